// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_touch_handler.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <functional>
#include <new>
#include <thread>

#include <android-base/properties.h>

#include "fp_host/faults.h"
#include "fp_host/testing.h"
#include "support/touch_test.h"

// These interpose system calls before the simulated device does.
namespace {

fp_host::Recorder<int> pauses;     // the finite timeouts of poll(), in ms
std::atomic<short> device_events;  // if not 0, what poll() reports for the device
std::atomic<int> sleeps;           // made by threads that wait for the handler's lock
std::atomic<int> naps;             // made by the worker where it cannot poll
int cancel_pipe[2];                // the last pipe
std::function<void(unsigned long)> before_request;  // changed only between requests

template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int poll(pollfd* fds, nfds_t count, int timeout) {
  static auto* const next = Next<decltype(poll)>("poll");
  if (timeout >= 0) {
    pauses.Add(timeout);
    return next(fds, count, timeout / 100);
  }
  if (device_events == 0) {
    return next(fds, count, timeout);
  }
  fds[0].revents = device_events;
  return 1;
}

extern "C" int ioctl(int fd, unsigned long request, ...) {
  static auto* const next = Next<decltype(ioctl)>("ioctl");
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (before_request) {
    before_request(request);
  }
  return next(fd, request, argument);
}

extern "C" int nanosleep(const timespec* time, timespec* rest) {
  static auto* const next = Next<decltype(nanosleep)>("nanosleep");
  ++sleeps;
  return next(time, rest);
}

extern "C" int pipe(int* fds) {
  static auto* const next = Next<decltype(pipe)>("pipe");
  const int result = next(fds);
  std::copy_n(fds, 2, cancel_pipe);
  return result;
}

extern "C" int usleep(useconds_t time) {
  static auto* const next = Next<decltype(usleep)>("usleep");
  ++naps;
  return next(time / 100);
}

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

constexpr char kTag[] = "FpsTouchHandler";

std::vector<uint8_t> Block(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  const int32_t fields[8] = {6, 1, left, top, right, bottom, 0, 0};
  std::vector<uint8_t> bytes(sizeof fields);
  memcpy(bytes.data(), fields, sizeof fields);
  return bytes;
}

void SetFactor(const std::string& factor) {
  base::SetProperty("persist.vendor.udfps.fth.touch_resolution_scaling_factor", factor);
}

using FpsTouchHandlerTest = TouchTest;

TEST_F(FpsTouchHandlerTest, ConfiguresTheScaledArea) {
  SetFactor("3");
  FpsTouchHandler handler;
  EXPECT_FALSE(handler.IsConfigured());
  EXPECT_TRUE(handler.Configure({.left = 0x7FFFFFFF, .top = -5, .right = 10, .bottom = 0}));
  EXPECT_TRUE(handler.Configure(kSensingArea));
  EXPECT_EQ((std::vector<TouchNode::Request>{{115, Block(0x7FFFFFFD, -15, 30, 0)},
                                             {115, Block(3, 6, 90, 120)}}),
            node_.TakeRequests());
  EXPECT_LOG(Debug(kTag, "OpenTouchDevice: opening device: /dev/fth_fd"),
             Debug(kTag, "Configure: left:2147483645, right:30, top:-15, bottom:0"),
             Debug(kTag, "Configure: left:3, right:90, top:6, bottom:120"));
  EXPECT_EQ(1, node_.CountOpenDescriptors()) << "opened once";
  for (const int end : cancel_pipe) {
    EXPECT_NE(0, fcntl(end, F_GETFL) & O_NONBLOCK);
  }
}

TEST_F(FpsTouchHandlerTest, ScalingFactorOfOddPropertiesIsOne) {
  for (const char* factor : {"", "x", "-1", "4294967296"}) {
    SetFactor(factor);
    EXPECT_EQ(1u, FpsTouchHandler().GetResolutionScalingFactor()) << factor;
  }
  SetFactor("4294967295");
  EXPECT_EQ(4294967295u, FpsTouchHandler().GetResolutionScalingFactor());
}

// Each step of the first Configure() fails once, and the next call retries from that step.
TEST_F(FpsTouchHandlerTest, FailedConfigureCanBeRepeated) {
  const LogLine opening = Debug(kTag, "OpenTouchDevice: opening device: /dev/fth_fd");
  const auto expect_failure = [this](const std::vector<LogLine>& log) {
    EXPECT_FALSE(handler_.Configure(kSensingArea));
    EXPECT_EQ(log, TakeLog());
  };
  const auto expect_pipe_failure = [&](const std::string& reason, std::vector<LogLine> log = {}) {
    log.insert(log.end(), {Error(kTag, "CreateCancelPipe: could not " + reason),
                           Error(kTag, "Init: failed to create stop pipe"),
                           Error(kTag, "Configure: failed to init touch_polling_worker_thread_"),
                           Debug(kTag, "~TouchPollingWorkerThread")});
    expect_failure(log);
  };
  SetFault({.function = "open", .error = EACCES});
  expect_failure({opening,
                  Error(kTag, "OpenTouchDevice: could not open /dev/fth_fd, Permission denied\n"),
                  Error(kTag, "Configure: failed to open touch device")});
  const long open_before = CountDescriptors();
  SetFault({.function = "pipe", .error = EMFILE});
  expect_pipe_failure("create stop pipe: Too many open files", {opening});
  SetFault({.function = "fcntl", .error = EPERM});
  expect_pipe_failure("make stop read pipe non-blocking: Operation not permitted");
  SetFault({.function = "fcntl", .first_call = 2, .error = EPERM});
  expect_pipe_failure("make stop write pipe non-blocking: Operation not permitted");
  EXPECT_EQ(open_before + 1, CountDescriptors()) << "only the touch device stays open";
  ClearFaults();
  const LogLine area = Debug(kTag, "Configure: left:1, right:30, top:2, bottom:40");
  node_.SetRequestResult(115, -7);
  expect_failure({area, Error(kTag, "Configure: fth ioctl 115 error -7")});
  EXPECT_FALSE(handler_.Start());
  EXPECT_LOG(Debug(kTag, "Start"), Error(kTag, "Start: configuration has not been completed"));
  node_.SetRequestResult(115, 0);
  EXPECT_TRUE(handler_.Configure(kSensingArea));
  node_.SetRequestResult(115, 1);
  EXPECT_FALSE(handler_.Configure(kSensingArea));
  EXPECT_TRUE(handler_.IsConfigured()) << "it stays configured";
}

TEST_F(FpsTouchHandlerTest, DevicePathIsAProperty) {
  const ScopedProperty path("persist.vendor.udfps.fth.touch_dev_path", "/dev/fth_fd9");
  EXPECT_FALSE(handler_.Configure(kSensingArea));
  EXPECT_EQ(
      Error(kTag, "OpenTouchDevice: could not open /dev/fth_fd9, No such file or directory\n"),
      TakeLog()[1]);
}

TEST_F(FpsTouchHandlerTest, UnsupportedDeviceIsNeverTouched) {
  base::SetProperty("persist.vendor.udfps.fps_touch_handler_supported", "0");
  EXPECT_FALSE(IsFpsTouchHandlerSupported());
  base::SetProperty("persist.vendor.udfps.fps_touch_handler_supported", "1");
  EXPECT_FALSE(IsFpsTouchHandlerSupported()) << "read once";
  EXPECT_FALSE(handler_.Configure(kSensingArea));
  EXPECT_FALSE(handler_.Start());
  EXPECT_EQ(0, node_.CountOpenDescriptors());
  EXPECT_EQ(Error(kTag, "Configure: FpsTouchHandler is not supported on this device"),
            TakeLog()[0]);
}

TEST_F(FpsTouchHandlerTest, SwitchesLptw) {
  EXPECT_FALSE(handler_.EnableLptwEventReport(true));
  handler_.Configure(kSensingArea);
  node_.TakeRequests();
  TakeLog();
  EXPECT_TRUE(handler_.EnableLptwEventReport(true));
  EXPECT_TRUE(handler_.EnableLptwEventReport(false));
  node_.SetRequestResult(102, 5);
  EXPECT_FALSE(handler_.EnableLptwEventReport(true));
  EXPECT_EQ((std::vector<TouchNode::Request>{{102, {}}, {103, {}}, {102, {}}}),
            node_.TakeRequests());
  EXPECT_LOG(Debug(kTag, "EnableLptwEventReport:1"), Debug(kTag, "EnableLptwEventReport:0"),
             Debug(kTag, "EnableLptwEventReport:1"),
             Error(kTag, "EnableLptwEventReport: fth ioctl 102 error 5"));
}

TEST_F(FpsTouchHandlerTest, StartAndStopLogTheirSteps) {
  EXPECT_TRUE(handler_.Stop());
  EXPECT_LOG(Debug(kTag, "Stop"));
  Run();
  EXPECT_TRUE(handler_.Start()) << "does nothing";
  EXPECT_LOG(Debug(kTag, "Start"));
  EXPECT_TRUE(handler_.Stop());
  EXPECT_TRUE(handler_.Stop());
  const std::vector<LogLine> log = TakeLog();
  ASSERT_LE(4u, log.size());
  EXPECT_EQ(Debug(kTag, "Stop"), log[0]);
  EXPECT_EQ(1,
            std::count(log.begin(), log.end(), Info(kTag, "WriteCancelEvent: write cancel event")));
  EXPECT_EQ(1u, CountLinesWith(log, "threadLoop exiting"));
  EXPECT_EQ(Debug(kTag, "Stop"), log.back());
}

// Expects an event that was decoded from `record`, whose angle is a quarter turn.
void ExpectDecoded(const TouchRecord& record, float divisor, int32_t type,
                   const TouchEvent& event) {
  EXPECT_EQ(type, event.type);
  EXPECT_EQ(record.info, event.info);
  EXPECT_EQ(record.id, event.id);
  for (size_t i = 0; i < record.coords.size(); ++i) {
    EXPECT_EQ(static_cast<float>(record.coords[i]) / divisor, event.coords[i]) << i;
  }
  for (size_t i = 0; i < record.signed_coords.size(); ++i) {
    EXPECT_EQ(static_cast<float>(record.signed_coords[i]) / divisor, event.signed_coords[i]) << i;
  }
  EXPECT_EQ(1.5707964F, event.angle);
  EXPECT_EQ(record.flags, event.flags);
  EXPECT_EQ(record.stamp, event.stamp);
}

TEST_F(FpsTouchHandlerTest, DeliversDecodedReports) {
  SetFactor("4");
  FpsTouchHandler handler;
  handler.touch_event_callback_ = [this](const TouchEvent& event) { events_.Add(event); };
  EXPECT_EQ(-1, handler.GetTouchEvent().type);
  ASSERT_TRUE(handler.Configure(kSensingArea));
  ASSERT_TRUE(handler.Start());
  TouchRecord record = {.stamp = 0x1122334455667788,
                        .signed_coords = {-10, 2147483647},
                        .angle = 4096,
                        .id = 7,
                        .type = 2,
                        .info = 0xFFFFFFFF,
                        .valid = 0xFF,
                        .flags = {1, 2, 3, 4, 5, 6, 7, 8, 9, 255}};
  for (size_t i = 0; i < record.coords.size(); ++i) {
    record.coords[i] = static_cast<uint16_t>(65535 - 3 * i);
  }
  TouchRecord unscaled = record;
  unscaled.id = -1;
  unscaled.type = 3;
  TouchRecord invalid = record;
  invalid.valid = 0xFE;
  ASSERT_TRUE(node_.Push({record, invalid, unscaled}));
  const auto events = events_.Take(2);
  ASSERT_EQ(2u, events.size());
  ExpectDecoded(record, 4, 2, events[0]);
  ExpectDecoded(unscaled, 1, -1, events[1]);
  EXPECT_EQ(1u, CountLinesWith(TakeLog(), "ReadTouchEvent: invalid event"));
  handler.Stop();
  ExpectDecoded(unscaled, 1, -1, handler.GetTouchEvent());  // the last valid one
}

TEST_F(FpsTouchHandlerTest, ReadsAtMost128RecordsOfABuffer) {
  Run();
  const std::vector<TouchRecord> full(128);
  std::string buffer = EncodeTouchRecords(full);
  for (const uint32_t count : {129u, 0xFFFFFFFFu, 0u, 128u}) {
    memcpy(buffer.data(), &count, sizeof count);
    ASSERT_TRUE(node_.PushBytes(buffer));
    ASSERT_TRUE(node_.Push({{.id = -2}}));  // marks its end
    const size_t expected = count == 0 ? 1 : 129;
    const auto events = events_.Take(expected);
    ASSERT_EQ(expected, events.size()) << count;
    EXPECT_EQ(-2, events.back().id);
  }
  // A buffer that ends early leaves invalid records.
  ASSERT_TRUE(node_.PushBytes(buffer.substr(0, 8 + 88 + 40)));
  ASSERT_TRUE(node_.Push({{.id = -2}}));
  EXPECT_EQ(2u, events_.Take(2).size());
}

TEST_F(FpsTouchHandlerTest, EmptyCallbackAborts) {
  ASSERT_TRUE(handler_.Configure(kSensingArea));
  ASSERT_TRUE(node_.Push({{}}));
  EXPECT_EXIT(handler_.ReadTouchEvent(), testing::KilledBySignal(SIGABRT), "");
}

// The worker ended because its exit was pending, and left the cancel byte in the pipe.
TEST_F(FpsTouchHandlerTest, CancelComesBeforeReports) {
  Gate gate;
  Run([&](const TouchEvent& event) {
    if (event.id == 1) {
      gate.Pass();
    }
    events_.Add(event);
  });
  node_.Push({{.id = 1}});
  EXPECT_TRUE(gate.AwaitArrival());
  node_.Push({{.id = 2}});
  std::thread stopper([this] { handler_.Stop(); });
  ASSERT_TRUE(Eventually([] { return CountLinesWith(TakeLog(), "write cancel event") == 1; }));
  gate.Open();
  stopper.join();
  EXPECT_EQ(1u, events_.Take(1).size()) << "the second buffer waits for the next start";
  TakeLog();
  handler_.Start();
  EXPECT_EQ(1u, events_.Take(1).size());
  EXPECT_EQ(1u, CountLinesWith(TakeLog(), "pollFds: received cancel event"));
  handler_.Stop();
}

TEST_F(FpsTouchHandlerTest, FailingDeviceIsLoggedOnceAndBackedOff) {
  Run();
  const auto fail_reads = [this](int error) {
    SetFault({.function = "read", .calls = Fault::kForever, .error = error});
    node_.Push({{}});
  };
  const struct {
    const char* why;
    std::function<void()> fail, recover;
  } kCases[] = {
      {"hang-up", [this] { node_.HangUp(); }, [this] { node_.Reconnect(); }},
      {"no device", [&] { fail_reads(ENODEV); }, ClearFaults},
      {"readable, but nothing to read", [&] { fail_reads(EAGAIN); }, ClearFaults},
      {"error without data",
       [&] {
         device_events = POLLERR;
         fail_reads(ENODEV);  // counts reads
       },
       [] {
         EXPECT_GE(1, CallsSinceFaultSet("read")) << "only a read after an earlier poll";
         ClearFaults();
         device_events = 0;
       }},
  };
  for (const auto& test : kCases) {
    SCOPED_TRACE(test.why);
    TakeLog();
    test.fail();
    std::vector<int> waited = pauses.Take(9);
    ASSERT_LE(9u, waited.size());
    waited.resize(9);
    EXPECT_EQ((std::vector{10, 20, 40, 80, 160, 320, 640, 1000, 1000}), waited);
    EXPECT_EQ(1u, CountLinesWith(TakeLog(), "failed"));
    test.recover();
    ASSERT_TRUE(node_.Push({{.id = 5}}));
    ASSERT_TRUE(Eventually([this] { return handler_.GetTouchEvent().id == 5; }));
    handler_.ClearTouchEvent();
    pauses.Take(0);
  }
}

TEST_F(FpsTouchHandlerTest, FailingPollSaysNothingAboutTheDevice) {
  Run();
  SetFault({.function = "poll", .calls = 8, .error = EINTR});
  node_.Push({{}});
  ASSERT_TRUE(Eventually([] { return CallsSinceFaultSet("poll") >= 9; }));
  EXPECT_EQ(8u, CountLinesWith(TakeLog(), "poll failed (errno=4)"));
  EXPECT_EQ(0u, pauses.Count()) << "a signal does not pause the worker";
  SetFault({.function = "poll", .error = ENOMEM});
  node_.Push({{}});
  EXPECT_EQ((std::vector{10}), pauses.Take(1));
  EXPECT_EQ(1u, CountLinesWith(TakeLog(), "poll failed (errno=12)"));
  SetFault({.function = "poll", .calls = Fault::kForever, .error = ENOMEM});
  node_.Push({{}});
  EXPECT_TRUE(Eventually([] { return naps >= 3; })) << "no busy loop where the pause fails too";
  ClearFaults();
  node_.HangUp();
  EXPECT_TRUE(Eventually([] { return CountLinesWith(TakeLog(), "touch device failed") == 1; }));
}

// Clients may copy the event as bytes, so its padding is zero too.
TEST_F(FpsTouchHandlerTest, ClearedEventIsZeroExceptItsType) {
  alignas(FpsTouchHandler) unsigned char memory[sizeof(FpsTouchHandler)];
  memset(memory, 0xA5, sizeof memory);
  auto* const handler = new (memory) FpsTouchHandler;
  const auto bytes = [handler] {
    const auto* first = reinterpret_cast<const unsigned char*>(&handler->touch_event_);
    return std::vector<unsigned char>(first, first + sizeof handler->touch_event_);
  };
  std::vector<unsigned char> cleared(sizeof(TouchEvent), 0);
  std::fill_n(cleared.begin(), 4, 0xFF);
  EXPECT_EQ(cleared, bytes());
  memset(static_cast<void*>(&handler->touch_event_), 0xA5, sizeof handler->touch_event_);
  handler->ClearTouchEvent();
  EXPECT_EQ(cleared, bytes());
  handler->~FpsTouchHandler();
}

TEST_F(FpsTouchHandlerTest, ThreadsThatConfigureTogetherShareDeviceAndWorker) {
  std::vector<std::thread> threads;
  std::atomic<int> here = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      ++here;
      EXPECT_TRUE(Eventually([&] { return here == 4; }));
      EXPECT_TRUE(handler_.Configure(kSensingArea));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(1, node_.CountOpenDescriptors());
}

TEST_F(FpsTouchHandlerTest, LptwRequestWaitsForTheOneBeforeIt) {
  ASSERT_TRUE(handler_.Configure(kSensingArea));
  node_.TakeRequests();
  Gate gate;
  before_request = [&gate](unsigned long request) {
    if (request == 115) {
      gate.Pass();
    }
  };
  std::thread configuring([this] { handler_.Configure(kSensingArea); });
  EXPECT_TRUE(gate.AwaitArrival());
  const int slept = sleeps;
  std::atomic<bool> switched = false;
  std::thread switching([&] { switched = handler_.EnableLptwEventReport(true); });
  EXPECT_TRUE(Eventually([&] { return switched || sleeps > slept; }));
  EXPECT_FALSE(switched);
  gate.Open();
  configuring.join();
  switching.join();
  EXPECT_EQ((std::vector<TouchNode::Request>{{115, Block(1, 2, 30, 40)}, {102, {}}}),
            node_.TakeRequests());
  before_request = nullptr;
}

TEST_F(FpsTouchHandlerTest, StopInTheCallbackEndsTheWorkerAfterIt) {
  Recorder<bool> results;
  Run([&](const TouchEvent& /*event*/) {
    results.Add(handler_.Stop());
    results.Add(handler_.Stop());
    results.Add(handler_.Start());
  });
  ASSERT_TRUE(node_.Push({{}, {}, {}}));
  EXPECT_EQ((std::vector{true, true, false}), results.Take(3));
  EXPECT_TRUE(handler_.Stop()) << "waits for the callback's end";
  EXPECT_EQ(0u, results.Count()) << "the rest of the buffer is dropped";

  handler_.touch_event_callback_ = [&](const TouchEvent& /*event*/) {
    results.Add(handler_.Start());
  };
  EXPECT_TRUE(handler_.Start());
  ASSERT_TRUE(node_.Push({{}}));
  EXPECT_EQ((std::vector{true}), results.Take(1)) << "it runs again";
  handler_.Stop();
}

// Stop() waits for the callback, which may call any operation without deadlock.
TEST_F(FpsTouchHandlerTest, CallbacksMayUseTheHandlerWhileItIsStopped) {
  std::atomic<bool> stopping = false;
  Run([&](const TouchEvent& /*event*/) {
    events_.Add({});
    while (!stopping) {
      std::this_thread::yield();
    }
    for (int i = 0; i < 50; ++i) {
      handler_.EnableLptwEventReport(i % 2 == 0);
      handler_.Configure(kSensingArea);
      handler_.Start();
      handler_.Stop();
    }
  });
  for (int i = 0; i < Share(200); ++i) {
    stopping = false;
    ASSERT_TRUE(handler_.Start());
    ASSERT_TRUE(node_.Push({{}}));
    ASSERT_EQ(1u, events_.Take(1).size());
    std::thread stopper([&] {
      stopping = true;
      handler_.Stop();
    });
    std::thread another([&] { handler_.EnableLptwEventReport(true); });
    stopper.join();
    another.join();
  }
}

}  // namespace
}  // namespace android::fp_utils

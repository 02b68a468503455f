// SPDX-License-Identifier: Apache-2.0
//
// Prints what must be the same with every compiler and on every processor: record texts, decoded
// touch reports and coverage counts of arbitrary values. Given a file of coverage cases, it prints
// that file with its counts instead. It compiles the library's sources that need no more of the
// platform than the log and the properties, so that it can be built for any processor.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "connectors/touch_report.h"
#include "fp_utils/auth_event.h"
#include "fp_utils/crc32.h"
#include "fp_utils/enroll_event.h"
#include "fp_utils/finger_sizes.h"
#include "fp_utils/shapes.h"
#include "golden/stub_platform.h"
#include "reference/coverage_case.h"

using namespace android::fp_utils;
using namespace fp_reference;

namespace {

// Knuth's MMIX generator, which gives the same numbers everywhere. Calls that take several numbers
// use braces, which fix the order of evaluation.
class Numbers {
 public:
  uint32_t Bits() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<uint32_t>(state_ >> 32);
  }
  int32_t Integer() {
    const uint32_t bits = Bits();
    return static_cast<int32_t>(bits >> (Bits() % 32));
  }
  // At least low and below high, in steps of 2^-22 of the range.
  float Between(float low, float high) {
    return low + (high - low) * (static_cast<float>(Bits() >> 10) / 4194304.0F);
  }

 private:
  uint64_t state_ = 20260304;
};

template <typename Values>
void Fill(Values& values, Numbers& numbers) {
  for (auto& value : values) {
    value = numbers.Integer();
  }
}

AuthEventG7 Attempt(Numbers& numbers) {
  AuthEventG7 event;
  event.timestamp = numbers.Integer();
  event.acquired_info = static_cast<int8_t>(numbers.Bits());
  event.auth_successful = numbers.Bits() % 2 == 0;
  event.fid = numbers.Integer();
  event.latency = numbers.Integer();
  event.iq = -numbers.Integer();
  event.t_cov = numbers.Between(-10, 110);
  event.t_dist = numbers.Between(0, 9);
  event.lptw = numbers.Bits();
  event.rc = numbers.Bits();
  event.rawmean_delta = -numbers.Integer();
  event.packed_metric_1 = numbers.Integer();
  event.packed_metric_2 = numbers.Integer();
  event.packed_metric_3 = numbers.Integer();
  Fill(event.stitch_img_num_, numbers);
  Fill(event.stitch_img_area_, numbers);
  return event;
}

EnrollEventG7 Enrollment(Numbers& numbers) {
  EnrollEventG7 event;
  event.timestamp = numbers.Integer();
  event.op = numbers.Bits() % 3;
  event.enroll_successful = numbers.Bits() % 2 == 0;
  event.fid = numbers.Integer();
  event.capture_count = numbers.Integer();
  event.iq_avg = numbers.Between(-100, 100);
  event.rc = numbers.Integer();
  event.rawmean_delta = numbers.Between(-4000, 4000);
  Fill(event.stitch_img_num_, numbers);
  return event;
}

template <typename Record>
void PrintRecord(const Record& record) {
  std::string text = record.ToBackupString();
  printf("%s crc %08x\n", text.c_str(), crc32(text.data(), text.size()));
  Record loaded;
  if (!loaded.LoadFromBackupString(text)) {
    printf("  does not load\n");
    return;
  }
  printf("  %s\n", loaded.ToBackupString().c_str());
  if constexpr (requires { loaded.ToDebugString(); }) {
    printf("  %s\n", loaded.ToDebugString().c_str());
  }
}

void PrintRecords(Numbers& numbers) {
  for (int i = 0; i < 40; ++i) {
    PrintRecord(Attempt(numbers));
    PrintRecord(Enrollment(numbers));
    PrintRecord(FingerSize{numbers.Integer(), numbers.Between(0, 400), numbers.Between(0, 300)});
  }
}

template <typename Values>
void PrintAll(const char* name, const Values& values) {
  printf(" %s", name);
  for (const auto value : values) {
    printf(" %a", static_cast<double>(value));
  }
}

void PrintReports(Numbers& numbers) {
  for (int i = 0; i < 60; ++i) {
    uint32_t bits[sizeof(touch_device::Record) / sizeof(uint32_t)];
    for (uint32_t& word : bits) {
      word = numbers.Bits();
    }
    const auto record = __builtin_bit_cast(touch_device::Record, bits);
    const TouchEvent event = touch_device::Decode(record, 1 + numbers.Bits() % 20);
    printf("valid %d type %d info %u id %d stamp %llu angle %a", touch_device::IsValid(record),
           event.type, event.info, event.id, static_cast<unsigned long long>(event.stamp),
           static_cast<double>(event.angle));
    PrintAll("coords", event.coords);
    PrintAll("signed", event.signed_coords);
    PrintAll("flags", event.flags);
    printf("\n");
  }
}

void PrintCounts(const Rect& grid, const IShape& s1, const IShape& s2) {
  const PlainCounts counts = CountIn(grid, s1, s2);
  std::cout << grid.Print() << " in " << s1.Print() << ", " << s2.Print() << ": " << counts << '\n';
}

void PrintCoverage(Numbers& numbers) {
  for (int i = 0; i < 60; ++i) {
    const Circle circle{Point{numbers.Between(80, 120), numbers.Between(80, 120)},
                        numbers.Between(1, 100)};
    const Ellipse ellipse{Point{numbers.Between(60, 140), numbers.Between(60, 140)},
                          numbers.Between(1, 220), numbers.Between(1, 160), numbers.Between(-4, 4)};
    const Rect grid{Point{0, 0}, Point{numbers.Between(100, 220), numbers.Between(100, 220)}};
    PrintCounts(grid, circle, ellipse);
    PrintCounts(grid, grid, ellipse);
    printf("  %a %a\n", static_cast<double>(circle.CoverageCoveredBy(ellipse)),
           static_cast<double>(grid.CoverageCoveredBy(circle)));
  }
}

// Prints the cases of `file` with the counts by rows, and below them other counts, if the plain
// scan or the library by samples counts anything else.
void Recount(std::istream& file) {
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') {
      std::cout << line << '\n';
      continue;
    }
    const auto read = CoverageCase::Read(line);
    const PlainCounts counts = read.CountByRows();
    std::cout << read.ToString() << ' ' << counts << '\n';
    for (const PlainCounts& others : {read.CountBySamples(), read.Scan()}) {
      if (others != counts) {
        std::cout << "  otherwise " << others << '\n';
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) {
    fp_golden::MuteLog();
    std::ifstream cases(argv[1]);
    Recount(cases);
    return 0;
  }
  setenv("TZ", "UTC", 1);
  Numbers numbers;
  PrintRecords(numbers);
  PrintReports(numbers);
  PrintCoverage(numbers);
  return 0;
}

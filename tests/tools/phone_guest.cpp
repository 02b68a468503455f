// SPDX-License-Identifier: Apache-2.0
//
// What the tests of fp_phone run on the phone. It does what its arguments say, one after another.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include <android-base/logging.h>
#include <android-base/properties.h>
#include <android/binder_manager.h>
#include <android/log.h>

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view verb = argv[i];
    if (verb == "log") {  // as a service's main() does, and before it
      __android_log_print(ANDROID_LOG_DEBUG, "Guest", "before\nmain");
      android::base::InitLogging(argv);
      LOG(ERROR) << "to stderr on a host";
      android::base::InitLogging(argv, android::base::LogdLogger());
      LOG(WARNING) << "to logd";
    } else if (verb == "property") {
      printf("property %s\n", android::base::GetProperty("a.b", "none").c_str());
    } else if (verb == "display") {
      constexpr char kDisplay[] = "com.norvan.hardware.kestra.display.IDisplay/default";
      printf("display %d\n", AServiceManager_isDeclared(kDisplay));
    } else if (verb == "steal") {  // closes what it did not open, and uses the numbers again
      for (int fd = 3; fd < 1024; ++fd) {
        close(fd);
      }
      for (int fd = 3; fd < 600; ++fd) {
        dup2(open("stolen", O_WRONLY | O_CREAT | O_CLOEXEC, 0600), fd);
      }
    } else if (verb == "abort") {
      abort();
    } else if (verb == "touch") {  // two reports
      const int fd = open("/dev/fth_fd", O_RDWR | O_CLOEXEC);
      char report[11272];
      for (int reports = 0; reports < 2; ++reports) {
        const ssize_t size = read(fd, report, sizeof report);
        printf("report of %zd bytes\n", size);
      }
    }
    fflush(stdout);
  }
}

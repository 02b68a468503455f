// SPDX-License-Identifier: Apache-2.0
//
// The program as its user runs it, with a guest that does what services do.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/program_test.h"

namespace fp_phone {
namespace {

namespace fs = std::filesystem;

class PhoneProgram : public fp_test::ProgramTest {
 protected:
  // The phone is the folder "p".
  fp_test::ProgramResult Run(const std::string& arguments) const override {
    return Shell("fp_phone() { " FP_PHONE " \"$@\"; }; GUEST=" PHONE_GUEST "; fp_phone " +
                 arguments);
  }
};

TEST_F(PhoneProgram, ExitCodesAndRefusals) {
  std::string header(64, '\0');
  std::ifstream("/bin/sh", std::ios::binary).read(header.data(), 64);
  header[56] = header[57] = '\0';  // no segments, so none that names a loader
  Write("static", header, 0755);
  header[18] ^= 1;
  Write("foreign", header, 0755);
  Write("by_static", "#! ./static\n", 0755);
  Write("text", "echo\n", 0755);
  Write("setuid", "", 04755);
  Write("file", "");
  Check({
      {"--help", 0, "Exit codes: run has that of PROGRAM"},
      {"", 2, "run, log, tree, pull or play"},
      {"tree --root nowhere", 2, "does not exist"},
      {"run --root p", 125, "-- and the program"},
      {"run --root p --property a -- true", 125, "\"a\" is not NAME=VALUE"},
      {"run --root p --property .a=b -- true", 125, "\".a\" is not a property name"},
      {"run --root p --property a=$(printf %092d 0) -- true", 125, "more than 91 bytes"},
      {"run --root p --property ro.a=$(printf %092d 0) -- true", 0, ""},
      {"run --root p --clock 2026-02-31 -- true", 125, "\"2026-02-31\" is not a time"},
      {"run --root p --stop-clock -- true", 125, "--clock"},
      {"run --root p --log T:x -- true", 125, "is not a filter"},
      {"run --root p --format color -- true", 125, "is not a format"},
      {"run --root p --service telephony -- true", 125, "--service"},
      {"run --root p --lux bright -- true", 125, "\"bright\" is not a light in lux"},
      {"run --root p --service thermal --skin inf -- true", 125, "\"inf\" is not a temperature"},
      {"run --root p --skin 40 -- true", 125, "--skin requires --service"},
      {"run --root file -- true", 125, "file: is not a folder"},
      {"run --root /proc/x -- true", 125, "/proc/x: No such file"},
      {"run --root p -- ./nothing", 127, "./nothing: there is no such program"},
      {"run --root p -- nothing-in-path", 127, "there is no such program"},
      {"run --root p -- ./file", 126, "is not an executable file"},
      {"run --root p -- /tmp", 126, "is not an executable file"},
      {"run --root p -- ./static", 126, "./static: is statically linked"},
      {"run --root p -- ./by_static", 126, "./static: is statically linked"},
      {"run --root p -- ./foreign", 126, "built for another processor"},
      {"run --root p -- ./text", 126, "neither a program nor a script"},
      {"run --root p -- ./setuid", 126, "set-user-ID"},
      {"run --root p -- sh -c 'exit 7'", 7, ""},
      {"run --root p -- $GUEST abort", 134, "phone_guest aborted (signal 6)"},
      {"run --root p -- sh -c 'kill -KILL $$'", 137, "sh was killed by signal 9 (Killed)"},
      // The signals of whoever runs the tool reach the program.
      {"run --root p -- sh -c 'trap \"exit 9\" TERM; kill -TERM $PPID; while :; do :; done'", 9,
       ""},
  });
}

TEST_F(PhoneProgram, ProgramsFindThePhone) {
  Check({
      {"run --root p --property a.b=c=d --property a.b=e=f -- $GUEST property display", 0,
       "property e=f\ndisplay 0\n"},
      {"run --root p --service display --lux 5 -- $GUEST property display", 0,
       "property none\ndisplay 1\n"},
      {"run --root p -- sh -c 'cd /data/vendor/fingerprint && echo old >a && mv a "
       "/data/vendor/fingerprint/b && ln -s b c && cat /data/vendor/fingerprint/c && test ! -e a "
       "&& "
       "mkdir -p /data/vendor/x/y && rmdir /data/vendor/x/y && chmod 700 /data/vendor/x && ls "
       "/data/vendor'",
       0, "old\nfingerprint\ntombstones\nx\n"},
      {"run --root p --clock 2026-03-04T05:06:07 --stop-clock -- date +%FT%T.%N", 0,
       "2026-03-04T05:06:07.000000000\n"},
      {"run --root p --clock @86400 -- sh -c 'date +%F; sh -c \"date +%F\"'", 0,
       "1970-01-02\n1970-01-02\n"},
      {"tree --root p", 0,
       "drwx------          - /data/vendor/x\n"
       "drwxr-xr-x          - /dev\n"},
      {"tree --root p", 0,
       "-rw-r--r--          4 /data/vendor/fingerprint/b\n"
       "lrwxrwxrwx          - /data/vendor/fingerprint/c -> b\n"},
  });
  EXPECT_EQ(std::string::npos, Run("tree --root p").output.find(".fp_phone"));
}

TEST_F(PhoneProgram, LogOutlivesAnAbort) {
  const std::string clock = "run --root p --clock 2026-03-04T05:06:07 --stop-clock ";
  const std::string run = Run(clock + "--format time -- $GUEST log abort").output;
  EXPECT_NE(std::string::npos, run.find("03-04 05:06:07.000 D/Guest   (")) << run;
  EXPECT_EQ("", Run("run --root q --log Guest:I --log phone_guest:S -- $GUEST log").output);
  Check({
      {"log --root p --format raw", 0, "before\nmain\nto stderr on a host\nto logd\n"},
      {"log --root p --format tag 'phone_guest:E' '*:S'", 0,
       "E/phone_guest: to stderr on a host\n"},
      {"log --root p T:x", 2, "is not a filter"},
      {"log --root q --format raw '*:W'", 0, "to stderr on a host\nto logd\n"},
      {"run --root q -- $GUEST log steal log", 0, ""},
      {"log --root q --format raw '*:W' | wc -l", 0, "6\n"},  // also those after the theft
      {"log --root q --clear", 0, ""},
      {"run --root q -- $GUEST log", 0, "D Guest   : before\n"},
      {"log --root q --format raw '*:E'", 0, "to stderr on a host\n"},
  });
  EXPECT_EQ(0U, fs::file_size(folder_ / "stolen"));  // no line went to a file of the guest
  const fs::path log = folder_ / "q/.fp_phone/log";
  fs::resize_file(log, fs::file_size(log) - 1);
  Check({{"log --root q --format raw", 1, "before\nmain\nto stderr on a host\n"},
         {"log --root q", 1, "the log is damaged"}});
  std::ofstream(log) << std::string(5000, '\xff');
  fs::create_directory(folder_ / "empty");
  Check({{"log --root q", 1, "the log is damaged at byte 0"},
         {"log --root empty", 1, "no program has run on this phone"}});
}

TEST_F(PhoneProgram, PullStaysOnThePhone) {
  Run("run --root p -- true");
  Write("secret", "secret");
  Write("p/data/vendor/fingerprint/a", "content");
  fs::create_symlink(folder_ / "secret", folder_ / "p/data/vendor/fingerprint/link");
  Write("p/data/vendor/fingerprint/.fp_phone/b", "the service's own");
  fs::create_directory_symlink(folder_, folder_ / "p/data/vendor/out");
  mkfifo((folder_ / "p/data/vendor/fingerprint/fifo").c_str(), 0600);
  Check({
      {"pull --root p /data/vendor/fingerprint/a b && cat b", 0, "content"},
      {"pull --root p /; ls -A phone; cat phone/data/vendor/fingerprint/.fp_phone/b", 0,
       "data\ndev\nsys\nthe service's own"},
      {"pull --root p /data/vendor/tombstones && test -d tombstones/fingerprint", 0, ""},
      {"pull --root p /data/vendor/fingerprint all; echo $?; cat all/a", 0,
       "fifo: is neither a file nor a folder\n"
       "fp_phone: /data/vendor/fingerprint/link: is a link, which pull does not "
       "follow\n1\ncontent"},
      {"pull --root p /data/vendor/out/secret", 1, "/data/vendor/out: "},
      {"pull --root p /data/vendor/fingerprint/../../../../secret", 1, "has no .."},
      {"pull --root p data", 1, "begins with /"},
      {"pull --root p /data/nothing", 1, "/data/nothing: No such file"},
      {"pull --root p /data p/data/vendor", 1, "lies on the phone itself"},
      {"log --root p; cd p/data && fp_phone pull --root .. /data copy", 1, "copy: lies on"},
      {"pull --root p /data /nowhere/x", 1, "No such file"},
  });
}

TEST_F(PhoneProgram, PlaysToTheProgramThatRuns) {
  const std::string deep(100, 'd');  // longer than the path of a socket may be
  const std::string play = std::string("play --root " + deep + " " RECORDINGS "/");
  const fp_test::ProgramResult run =
      Run("run --root " + deep + " --touch -- sh -c '" FP_PHONE " run --root " + deep +
          " --touch -- true; " FP_PHONE " " + play + "nothing; " FP_PHONE " " + play +
          "tap.evemu --panel 1080x2340 --at-once && exec $0 touch' $GUEST");
  EXPECT_EQ(0, run.exit_code);
  EXPECT_EQ("fp_phone: " + deep + ": another program runs on this phone with --touch\nfp_phone: " +
                RECORDINGS
                "/nothing: No such file or directory\nreport of 96 bytes\n"
                "report of 96 bytes\n",
            run.output);
  EXPECT_EQ(1, Run(play + "tap.evemu").exit_code);
  EXPECT_EQ(2, Run(play + "tap.evemu --panel 0x5").exit_code);
  // The socket of a run that was killed does not hinder the next one.
  Run("run --root " + deep + " --touch -- sh -c 'kill -KILL $PPID'");
  EXPECT_EQ(0, Run("run --root " + deep + " --touch -- true").exit_code);
}

}  // namespace
}  // namespace fp_phone

// SPDX-License-Identifier: Apache-2.0
//
// The program as its user runs it: exit codes, formats, and inputs that nobody would send on
// purpose.
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "fp_host/testing.h"
#include "fp_utils/auth_stats.h"
#include "support/program_test.h"

namespace fp_inspect {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr char kDump[] =
    "Critical Errors:\n"
    "  #000 2026-03-04 05:06:09 bad \xff \x1b[31m text\n"
    "Auth Stats:\n"
    "  total_attempts:3, auth_attempts:2, auth_rejects:1, frr:50.00%, avg_iq:30.00, "
    "avg_rawmean_delta:2000.00\n"
    "Auth Events:\n"
    "  #000 2026-03-04 05:06:07 auth_successful:1, fid:1, latency:248, iq:24, rc:0, lptw:1, "
    "t_cov:nan%, t_dist:2.1mm, rawmean_delta:1133, match_score:570, stitch_img_num_:1_1_0_0_0, "
    "stitch_img_area_:1_2_3_4_5\n"
    "  #001 2026-03-04 05:06:08 auth_successful:0, fid:0, latency:268, iq:36, rc:1014, lptw:1, "
    "t_cov:42%, t_dist:0.6mm, rawmean_delta:1191, match_score:45, reason:Low quality\n"
    "  #002 2026-03-04 05:06:09 acquisition_error:TOO_DARK, rc:0, lptw:0\n";

class InspectProgram : public fp_test::ProgramTest {
 protected:
  fp_test::ProgramResult Run(const std::string& arguments) const override {
    return Shell(FP_INSPECT " " + arguments);
  }

  std::vector<json> Objects(const std::string& arguments) const {
    std::vector<json> objects;
    std::istringstream lines(Run(arguments + " 2>/dev/null").output);
    for (std::string line; std::getline(lines, line);) {
      objects.push_back(json::parse(line));
    }
    return objects;
  }
};

TEST_F(InspectProgram, ExitCodesAndMessages) {
  Write("good", kDump);
  Write("cut", std::string(kDump, sizeof kDump - 20));
  Write("empty", "");
  Write("tree/data/x", kDump);
  Write("binary", std::string("\0\xff#\n0x\0", 7) + std::string(100000, '\x80'));
  fs::create_directory_symlink(folder_ / "tree", folder_ / "tree/loop");
  fs::create_symlink("self", folder_ / "self");
  ASSERT_EQ(0, mkfifo((folder_ / "pipe").c_str(), 0600));
  Write("giga", "");
  fs::resize_file(folder_ / "giga", 1L << 30);  // one line of NUL bytes
  Check({
      {"--help", 0, "Exit codes: 0 success"},
      {"", 2, "summary, list, verify, fleet, replay, compare or report"},
      {"summary", 2, "inputs is required"},
      {"list good --where nose=1", 2, "\"nose\" is not a numeric field"},
      {"list good --where reason", 2, "e.g. t_cov<60"},
      {"summary good --since yesterday", 2, "\"yesterday\" is not a valid time"},
      {"summary good --tz Mars/Crater", 2, "is not a valid time zone"},
      {"summary good --format csv", 2, "--format"},
      {"fleet good -j 0", 2, "--jobs"},
      {"replay good --set nose=1", 2,
       "unknown setting \"nose\"; valid settings: number_of_attempts"},
      {"replay good --set frr_threshold=4294967296", 2, "invalid value \"4294967296\""},
      {"replay good --set frr_threshold", 2, "invalid value \"\""},
      {"replay good --set upper_bound_us=1", 2, "--calibration"},
      {"replay good --sweep frr_threshold=40:10:5", 2, "is not NAME=FROM:TO:BY"},
      {"replay good --sweep frr_threshold=10:40:0", 2, "is not NAME=FROM:TO:BY"},
      {"replay good --calibration 60:-1", 2, "is not MS:BASE"},
      {"replay good --check", 3, "no dump has a successful bring-up"},
      {"summary good", 0, "no image 1; rejected 1 of 2\n"},
      {"summary - <good", 0, "rejected 1 of 2\n"},
      {"summary good good tree", 0, "3 attempts, 2026-03-04 05:06 to 2026-03-04 05:06\n"},
      {"summary good --since 2026-03-04\\ 05:06:08 --until @1772600769", 0, "1 attempts"},
      {"summary nothing", 1, "nothing: No such file"},
      {"summary self", 1, "self: Too many levels"},
      {"summary pipe", 1, "pipe: is a named pipe without a writer"},
      {"summary /dev/zero", 1, "/dev/zero: is neither a file nor a pipe"},
      {"summary empty", 3, "no record in any input"},
      {"summary binary", 3, "no record"},
      {"summary giga", 3, "no record"},
      {"summary tree", 0, "tree: entries skipped (links to folders, pipes, devices): 1"},
      {"summary cut", 4, "damage at byte 565: cut: cannot parse record #002 (cut)"},
      {"compare good", 2, "-- IN... for side B, or --since-when"},
      {"compare good --since-when -- good", 2, "excludes"},
      {"compare good -- good --exit-code", 0, "No significant difference: too few records"},
      {"compare good --since-when", 0, "No significant change in 3 attempts"},
      {"compare good -- empty", 3, "one side has no attempts"},
      {"compare good -- nothing --exit-code", 1, "nothing: No such file"},
      {"compare cut -- good", 4, "No significant difference"},
      {"report good", 2, "--output is required"},
      {"report tree good -o tree/data/x", 1, "tree/data/x: is one of the inputs"},
      {"report good -- empty -o empty", 1, "empty: is one of the inputs"},
      {"report good -o pipe", 1, "pipe: is not a regular file"},
      {"report good -o no/page", 1, "no/page: No such file"},
      {"report empty -o page", 3, "no record in any input"},
      {"report good nothing -o page", 1, "nothing: No such file"},
      {"report good -- cut -o page", 4, "damage at byte 565"},
      {"verify good cut", 4, "cut: text of 614 bytes, 3 sections, 3 records\n  ! byte 565 (92 %)"},
      {"summary good 2>&1 >/dev/full", 1, "fp_inspect: "},
      {"summary good >/dev/full", 1, ""},
      {"fleet good tree cut nothing", 1, "4 inputs, 3 with attempts"},
  });
}

TEST_F(InspectProgram, ObjectsAndTables) {
  Write("good", kDump);
  const std::vector<json> records = Objects("list good --format jsonl");
  ASSERT_EQ(4u, records.size());
  EXPECT_EQ(1, records[0]["schema"]);
  EXPECT_EQ("attempt", records[0]["type"]);
  EXPECT_EQ(1772600767, records[0]["timestamp"]);
  EXPECT_EQ("2026-03-04 05:06:07", records[0]["timestamp_text"]);
  EXPECT_TRUE(records[0]["t_cov"].is_null()) << "NaN";
  EXPECT_TRUE(records[0]["packed_metric_1"].is_null()) << "not in a dump";
  EXPECT_EQ(2.1, records[0]["t_dist"]) << "as it was printed";
  EXPECT_EQ("low_coverage", records[1]["cause"]);
  EXPECT_EQ("Low quality", records[1]["reason"]);
  EXPECT_EQ("TOO_DARK", records[2]["acquisition_error"]);
  EXPECT_EQ("bad \ufffd \x1b[31m text", records[3]["message"]) << "not UTF-8";

  EXPECT_EQ(1u, Objects("list good --format jsonl --where 't_cov<60' --failed").size());
  EXPECT_EQ(1u, Objects("list good --format jsonl --reason too_dark").size());
  EXPECT_EQ(1u,
            Objects("list good --format jsonl --finger 1 --where iq\\>3 --where iq\\<30").size());

  const json summary = Objects("summary good --format jsonl --by day").at(0);
  EXPECT_EQ(1, summary["rejected"]["k"]);
  EXPECT_EQ("low_coverage", summary["causes"][0]["id"]);
  EXPECT_EQ("2026-03-04", summary["periods"][0]["label"]);
  const std::vector<json> verified = Objects("verify good nothing --format jsonl");
  EXPECT_EQ(3, verified.at(0)["records"]["attempt"]);
  EXPECT_EQ("failure", verified.at(1)["type"]) << "an error is an object too";
  EXPECT_EQ("nothing", verified.at(1)["input"]);
  Write("cut", std::string(kDump, sizeof kDump - 20));
  EXPECT_EQ(1, Objects("list cut --format jsonl").back()["count"]) << "of damages";

  std::istringstream table(Run("list good --format csv").output);
  std::string line;
  std::getline(table, line);
  const auto commas = std::count(line.begin(), line.end(), ',');
  for (int rows = 0; std::getline(table, line); ++rows) {
    EXPECT_EQ(commas, std::count(line.begin(), line.end(), ',')) << line;
  }
}

TEST_F(InspectProgram, ComparisonOfTwoGroups) {
  const auto report = [](const char* attempt) {
    std::string text = "Auth Events:\n";
    for (int i = 0; i < 40; ++i) {
      text += fmt::format("  #{:03} 2026-03-04 {:02}:{:02}:00 {}\n", i, i / 4, i % 4, attempt);
    }
    return text;
  };
  Write("good", report("auth_successful:1, fid:1, latency:248, iq:40, rc:0, lptw:1, t_cov:90%, "
                       "t_dist:2.1mm, rawmean_delta:1133, match_score:570, "
                       "stitch_img_num_:1_1_0_0_0, stitch_img_area_:1_2_3_4_5"));
  Write("dark", report("acquisition_error:TOO_DARK, rc:0, lptw:0"));
  EXPECT_EQ(0, Run("compare good -- dark").exit_code);
  EXPECT_EQ(5, Run("compare good -- dark --exit-code").exit_code);
  EXPECT_EQ(5, Run("compare --exit-code good --against dark").exit_code);
  EXPECT_EQ(0, Run("compare good -- good --exit-code").exit_code);
  const json object = Objects("compare good -- dark --format jsonl").at(0);
  EXPECT_EQ("comparison", object["type"]);
  EXPECT_TRUE(object["differs"]);
  EXPECT_EQ(json({40, 40}), object["attempts"]);
  EXPECT_EQ("no_image", object["rows"][0]["id"]);
  EXPECT_EQ(40, object["rows"][0]["b"]["k"]);
  EXPECT_TRUE(object["rows"][1]["low"].is_null()) << "one side has no images";
  const std::string table = Run("compare good -- dark --format csv").output;
  EXPECT_EQ(0u,
            table.find("id,title,a_n,a_sum,b_n,b_sum,low,high,p\nno_image,no image,40,0,40,40,"))
      << table;
}

TEST_F(InspectProgram, PageIsWrittenAsAWhole) {
  Write("good", kDump);
  Write("<b>\"&", kDump);
  ASSERT_EQ(0, Run("report good -- '<b>\"&' -o page").exit_code);
  const std::string page = Shell("cat page").output;
  for (const char* part : {"B: &lt;b&gt;&quot;&amp;", "bad \ufffd ?[31m text",
                           "No significant difference", "</html>\n"}) {
    EXPECT_NE(std::string::npos, page.find(part)) << part;
  }

  // Files of more than 512 bytes cannot be written here.
  const fp_test::ProgramResult full =
      Shell("ulimit -f 1; trap '' XFSZ; " FP_INSPECT " report good -o page");
  EXPECT_EQ(1, full.exit_code);
  EXPECT_EQ("fp_inspect: page: File too large\n", full.output);
  EXPECT_EQ(page, Shell("cat page").output) << "the old page stays";
  EXPECT_EQ("<b>\"&\ngood\npage\n", Shell("LC_ALL=C ls").output) << "no temporary file stays";
}

// Dumps and the backup file of one device, which round floats differently, form one timeline.
TEST_F(InspectProgram, DumpsAndBackupFilesOfADevice) {
  const fp_host::ScratchDevice device("fp_inspect_device");
  android::fp_utils::AuthStatsG7 attempts("0", 100, true);
  attempts.Init();
  for (int i = 0; i < 300; ++i) {
    auto attempt = std::make_shared<android::fp_utils::AuthEventG7>();
    attempt->timestamp = 1772600767 + i;
    attempt->acquired_info = 1;
    attempt->auth_successful = i % 3 != 0;
    attempt->rc = attempt->auth_successful ? 0 : 1;
    attempt->t_cov = static_cast<float>(i) / 3.001F;
    attempt->t_dist = static_cast<float>(i % 77) / 8;
    attempts.AddAttempt(attempt);
    if (i % 90 == 89) {
      Write("day" + std::to_string(i),
            fp_host::DumpText([&](int fd) { attempts.Dump(fd, nullptr, 0); }));
    }
  }
  const std::string file = fp_host::HostPath(attempts.GetBackupPath());
  const fp_test::ProgramResult both = Run("summary " + folder_.string() + " " + file);
  EXPECT_NE(std::string::npos, both.output.find("300 attempts")) << both.output;
  EXPECT_NE(std::string::npos, both.output.find("rejected 100 of 300")) << both.output;
  EXPECT_EQ(0, both.exit_code);
  // The last success saved the file; only the file has these metrics.
  EXPECT_EQ(100u, Objects("list --format jsonl --where packed_metric_1=0 " + file).size());
}

TEST_F(InspectProgram, FleetIsTheSameWithAnyNumberOfThreads) {
  for (int i = 0; i < 60; ++i) {
    Write("reports/" + std::to_string(i), i % 7 == 0 ? "no dump" : kDump);
  }
  const std::string once = Run("fleet reports -j 1 --format jsonl").output;
  EXPECT_EQ(60, std::count(once.begin(), once.end(), '\n'));
  EXPECT_EQ(once, Run("fleet reports -j 8 --format jsonl").output);
  EXPECT_NE(std::string::npos, Run("fleet reports").output.find("60 inputs, 51 with attempts"));
}

}  // namespace
}  // namespace fp_inspect

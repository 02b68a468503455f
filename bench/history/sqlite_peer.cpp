// SPDX-License-Identifier: Apache-2.0
//
// Keeps the newest 100 records in an SQLite database that commits after each record, for comparison
// with a history that saves after each.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <string>

#include "history/sample_records.h"
#include "measure/bench_device.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::AuthEventG7;

constexpr int kRecords = 100;

class Database {
 public:
  explicit Database(const std::string& journal_mode) {
    const std::string path = DeviceInMemory() + "/" + journal_mode + ".db";
    sqlite3_open(path.c_str(), &database_);
    Execute("PRAGMA journal_mode=" + journal_mode);
    Execute("DROP TABLE IF EXISTS attempts");
    Execute("CREATE TABLE attempts (id INTEGER PRIMARY KEY, record TEXT)");
    sqlite3_prepare_v2(database_, "INSERT INTO attempts (record) VALUES (?)", -1, &insert_,
                       nullptr);
    sqlite3_prepare_v2(database_, "DELETE FROM attempts WHERE id = (SELECT min(id) FROM attempts)",
                       -1, &delete_, nullptr);
  }
  ~Database() {
    sqlite3_finalize(insert_);
    sqlite3_finalize(delete_);
    sqlite3_close(database_);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Execute(const std::string& statement) {
    sqlite3_exec(database_, statement.c_str(), nullptr, nullptr, nullptr);
  }
  void Insert(const std::string& record) {
    sqlite3_bind_text(insert_, 1, record.data(), static_cast<int>(record.size()), SQLITE_STATIC);
    sqlite3_step(insert_);
    sqlite3_reset(insert_);
  }
  void DeleteOldest() {
    sqlite3_step(delete_);
    sqlite3_reset(delete_);
  }

 private:
  sqlite3* database_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* delete_ = nullptr;
};

void KeepNewest(benchmark::State& state, const char* journal_mode) {
  Database database(journal_mode);
  int number = 0;
  for (; number < kRecords; ++number) {
    database.Insert(Sample<AuthEventG7>(number)->ToBackupString());
  }
  for (auto _ : state) {
    database.Execute("BEGIN");
    database.Insert(Sample<AuthEventG7>(number++)->ToBackupString());
    database.DeleteOldest();
    database.Execute("COMMIT");
  }
}

BENCHMARK_CAPTURE(KeepNewest, sqlite_wal, "WAL");
BENCHMARK_CAPTURE(KeepNewest, sqlite_rollback, "DELETE");

const bool kClaims[] = {
    Claim("save_100_over_sqlite_wal", "AuthSave/100", "KeepNewest/sqlite_wal", Goal::kAtMost, 0.6),
    ReportRatio("sqlite_rollback_over_save_100", "KeepNewest/sqlite_rollback", "AuthSave/100"),
};

}  // namespace
}  // namespace fp_bench

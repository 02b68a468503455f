// SPDX-License-Identifier: Apache-2.0
#include "program.h"

#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "commands.h"

namespace fp_phone {
namespace {

constexpr int kMaxInterpreters = 4;  // as the kernel
constexpr size_t kMaxHeaders = 1024;

Program Refuse(const std::string& path, int exit_code, const std::string& why) {
  return {
      .path = path, .refusal = fmt::format("{}: {}", Printable(path), why), .exit_code = exit_code};
}

std::string LookUp(const std::string& name) {
  if (name.find('/') != name.npos) {
    return name;
  }
  const char* const variable = getenv("PATH");
  std::istringstream folders(variable != nullptr ? variable : "/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::string path = (folder.empty() ? "." : folder) + "/" + name;
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        access(path.c_str(), X_OK) == 0) {
      return path;
    }
  }
  return name;
}

template <typename Record>
bool ReadAt(std::istream& file, uint64_t offset, Record* record) {
  file.seekg(static_cast<std::streamoff>(offset));
  return static_cast<bool>(file.read(reinterpret_cast<char*>(record), sizeof *record));
}

// Whether the dynamic loader, which preloads libraries, runs the program. It does not run a static
// one.
bool HasLoader(std::istream& file, const Elf64_Ehdr& header) {
  for (size_t i = 0; i < std::min<size_t>(header.e_phnum, kMaxHeaders); ++i) {
    Elf64_Phdr segment = {};
    if (ReadAt(file, header.e_phoff + i * sizeof segment, &segment) &&
        segment.p_type == PT_INTERP) {
      return true;
    }
  }
  return false;
}

// Why the libraries of the phone cannot be loaded into a program of the machine.
std::string RefuseElf(std::istream& file, const Elf64_Ehdr& header) {
  std::ifstream own("/proc/self/exe", std::ios::binary);
  Elf64_Ehdr own_header = {};
  ReadAt(own, 0, &own_header);
  if (header.e_ident[EI_CLASS] != own_header.e_ident[EI_CLASS] ||
      header.e_machine != own_header.e_machine) {
    return "is built for another processor, for which there is no phone";
  }
  return HasLoader(file, header)
             ? ""
             : "is statically linked, so nothing can be preloaded into it; link it dynamically";
}

Program Check(const std::string& path, int depth) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    return Refuse(path, errno == ENOENT ? kNotFound : kCannotRun,
                  errno == ENOENT ? "there is no such program" : strerror(errno));
  }
  if (!S_ISREG(status.st_mode) || access(path.c_str(), X_OK) != 0) {
    return Refuse(path, kCannotRun, "is not an executable file");
  }
  if ((status.st_mode & (S_ISUID | S_ISGID)) != 0) {
    return Refuse(path, kCannotRun,
                  "is a set-user-ID or set-group-ID program, into which nothing can be preloaded");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return Refuse(path, kCannotRun, strerror(errno));
  }
  Elf64_Ehdr header = {};
  const bool has_header = ReadAt(file, 0, &header);
  file.clear();
  if (has_header && memcmp(header.e_ident, ELFMAG, SELFMAG) == 0) {
    const std::string why = RefuseElf(file, header);
    return why.empty() ? Program{.path = path} : Refuse(path, kCannotRun, why);
  }
  file.seekg(0);
  std::string line;
  std::string interpreter;
  std::getline(file, line);
  if (line.substr(0, 2) != "#!" || !(std::istringstream(line.substr(2)) >> interpreter)) {
    return Refuse(path, kCannotRun,
                  "is neither a program nor a script with #! and its interpreter");
  }
  if (depth == kMaxInterpreters) {
    return Refuse(path, kCannotRun, "needs too many interpreters");
  }
  Program checked = Check(interpreter, depth + 1);
  checked.path = path;
  return checked;
}

}  // namespace

Program FindProgram(const std::string& name) { return Check(LookUp(name), 0); }

}  // namespace fp_phone

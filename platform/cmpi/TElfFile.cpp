// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TElfFile.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <system_error>

namespace NZEPQEL20 {

namespace {

struct TMachine {
  unsigned int number;
  const char* name;
};

constexpr TMachine kMachines[] = {
    {EM_386, "i386"},      {EM_X86_64, "x86_64"}, {EM_ARM, "arm"},   {EM_AARCH64, "aarch64"},
    {EM_PPC, "ppc"},       {EM_PPC64, "ppc64"},   {EM_S390, "s390"}, {EM_IA_64, "ia64"},
    {EM_SPARCV9, "sparc"}, {EM_RISCV, "riscv"},   {EM_MIPS, "mips"}, {EM_LOONGARCH, "loongarch"}};

#if defined(__x86_64__)
constexpr unsigned int kThisMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr unsigned int kThisMachine = EM_AARCH64;
#elif defined(__powerpc64__)
constexpr unsigned int kThisMachine = EM_PPC64;
#elif defined(__s390__)
constexpr unsigned int kThisMachine = EM_S390;
#elif defined(__riscv)
constexpr unsigned int kThisMachine = EM_RISCV;
#elif defined(__i386__)
constexpr unsigned int kThisMachine = EM_386;
#elif defined(__arm__)
constexpr unsigned int kThisMachine = EM_ARM;
#else
#error "Which ELF machine number is this?"
#endif

constexpr unsigned char kThisClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char kThisOrder =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;

std::string GetMachineName(unsigned int number) {
  for (const TMachine& machine : kMachines) {
    if (machine.number == number) return machine.name;
  }
  return "machine " + std::to_string(number);
}

/// The record at `offset`; false when the file ends before it does.
template <class T>
bool Get(const std::string& bytes, std::size_t offset, T& record) {
  if (offset > bytes.size() || bytes.size() - offset < sizeof record) return false;
  std::memcpy(&record, bytes.data() + offset, sizeof record);
  return true;
}

std::string ReadWhole(const std::string& file, std::string& fault) {
  const int number = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status = {};
  if (number < 0 || ::fstat(number, &status) != 0) {
    fault = "cannot be read: " + std::generic_category().message(errno);
    if (number >= 0) ::close(number);
    return {};
  }
  std::string bytes;
  if (!S_ISREG(status.st_mode)) {
    fault = "is no library (not a regular file)";
  } else if (static_cast<std::size_t>(status.st_size) > TElfFile::kMaxSize) {
    fault = "is larger than 512 MiB";
  } else {
    bytes.resize(static_cast<std::size_t>(status.st_size));
    std::size_t size = 0;
    for (ssize_t count = 1; count > 0 && size < bytes.size();) {
      count = ::read(number, bytes.data() + size, bytes.size() - size);
      if (count > 0) size += static_cast<std::size_t>(count);
    }
    bytes.resize(size);
  }
  ::close(number);
  return bytes;
}

/// Machine number of a header in either byte order.
unsigned int GetMachine(const std::string& bytes) {
  const auto first = static_cast<unsigned char>(bytes[18]);
  const auto second = static_cast<unsigned char>(bytes[19]);
  const bool isLittle = bytes[EI_DATA] == ELFDATA2LSB;
  return isLittle ? first | (unsigned{second} << 8U) : second | (unsigned{first} << 8U);
}

}  // namespace

struct TElfFile::TSection {
  std::size_t offset = 0;
  std::size_t size = 0;
};

/// A table and the texts that it points to.
struct TElfFile::TSymbolTable {
  TSection entries;
  TSection texts;

  std::string GetText(const std::string& bytes, std::size_t place) const {
    if (place >= texts.size) return {};
    const char* text = bytes.data() + texts.offset + place;
    return std::string(text, strnlen(text, texts.size - place));
  }
};

TElfFile::TElfFile(const std::string& file) {
  const std::string bytes = ReadWhole(file, m_fault);
  if (m_fault.empty()) Read(bytes);
}

void TElfFile::Read(const std::string& bytes) {
  if (bytes.size() < 20 || bytes.compare(0, SELFMAG, ELFMAG) != 0) {
    m_fault = "is no library (no ELF header)";
    return;
  }
  const unsigned int machine = GetMachine(bytes);
  const bool isOther = bytes[EI_CLASS] != kThisClass || bytes[EI_DATA] != kThisOrder;
  if (machine != kThisMachine) {
    m_fault =
        "is for " + GetMachineName(machine) + ", this machine is " + GetMachineName(kThisMachine);
  } else if (isOther) {
    m_fault = std::string("is a ") + (bytes[EI_CLASS] == ELFCLASS32 ? "32" : "64") +
              "-bit library of another kind, this machine needs " +
              std::to_string(8 * sizeof(void*)) + " bit";
  } else {
    ElfW(Ehdr) header = {};
    if (!Get(bytes, 0, header)) {
      m_fault = "is cut off within its ELF header";
    } else if (header.e_type != ET_DYN) {
      m_fault = "is no shared library (another kind of ELF file)";
    } else {
      ReadSections(bytes);
    }
  }
}

void TElfFile::ReadSections(const std::string& bytes) {
  ElfW(Ehdr) header = {};
  Get(bytes, 0, header);
  const auto getSection = [&](std::size_t index, ElfW(Shdr) & section) {
    const std::size_t place = header.e_shoff + index * sizeof section;
    return index < header.e_shnum && header.e_shentsize == sizeof section &&
           place >= header.e_shoff && Get(bytes, place, section);
  };
  const auto isInside = [&bytes](const ElfW(Shdr) & section) {
    return section.sh_offset <= bytes.size() && section.sh_size <= bytes.size() - section.sh_offset;
  };
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    ElfW(Shdr) section = {};
    ElfW(Shdr) texts = {};
    if (!getSection(i, section)) return;
    const bool isWanted = section.sh_type == SHT_DYNSYM || section.sh_type == SHT_DYNAMIC;
    if (!isWanted || !isInside(section)) continue;
    if (!getSection(section.sh_link, texts) || !isInside(texts)) continue;
    const TSymbolTable table = {{section.sh_offset, section.sh_size},
                                {texts.sh_offset, texts.sh_size}};
    if (section.sh_type == SHT_DYNSYM) {
      ReadSymbols(bytes, table);
    } else {
      ReadDynamic(bytes, table);
    }
  }
}

void TElfFile::ReadSymbols(const std::string& bytes, const TSymbolTable& table) {
  ElfW(Sym) symbol = {};
  for (std::size_t at = 0; at + sizeof symbol <= table.entries.size; at += sizeof symbol) {
    if (!Get(bytes, table.entries.offset + at, symbol)) return;
    if (symbol.st_shndx == SHN_UNDEF) continue;
    std::string name = table.GetText(bytes, symbol.st_name);
    if (!name.empty()) m_symbols.push_back(std::move(name));
  }
}

void TElfFile::ReadDynamic(const std::string& bytes, const TSymbolTable& table) {
  ElfW(Dyn) entry = {};
  for (std::size_t at = 0; at + sizeof entry <= table.entries.size; at += sizeof entry) {
    if (!Get(bytes, table.entries.offset + at, entry) || entry.d_tag == DT_NULL) return;
    const std::string text = table.GetText(bytes, entry.d_un.d_val);
    if (entry.d_tag == DT_NEEDED && !text.empty()) m_needed.push_back(text);
    if (entry.d_tag == DT_SONAME) m_soname = text;
  }
}

}  // namespace NZEPQEL20

// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TElfFile.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/schema/TDescriptor.h"

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

/// Bytes of a table that are read; more than any library has.
constexpr std::uint64_t kMaxTable = std::uint64_t{64} * 1024 * 1024;

// The older hash table counts in words of another size on two machines.
#if defined(__s390x__) || defined(__alpha__)
using THashWord = std::uint64_t;
#else
using THashWord = std::uint32_t;
#endif

std::string DescribeError() {
  return "cannot be read: " + std::generic_category().message(errno);
}

/// A regular file that is read in pieces.
class TPieces {
 public:
  TPieces(const std::string& file, std::string& fault) {
    struct stat status = {};
    // Before anything else is opened: that alone moves some devices.
    if (::stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
      fault = "is no library (not a regular file)";
      return;
    }
    m_file = TDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!m_file.IsOpen() || ::fstat(m_file.Get(), &status) != 0) {
      fault = DescribeError();
    } else if (!S_ISREG(status.st_mode)) {
      fault = "is no library (not a regular file)";
    } else {
      m_size = static_cast<std::uint64_t>(status.st_size);
    }
  }

  std::uint64_t GetSize() const { return m_size; }

  bool IsInside(std::uint64_t offset, std::uint64_t size) const {
    return offset <= m_size && size <= m_size - offset;
  }

  /// False when the file ends before that.
  bool Read(std::uint64_t offset, void* target, std::uint64_t size) const {
    auto* place = static_cast<char*>(target);
    while (size > 0) {
      const ssize_t count = ::pread(m_file.Get(), place, size, static_cast<off_t>(offset));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      place += count;
      offset += static_cast<std::uint64_t>(count);
      size -= static_cast<std::uint64_t>(count);
    }
    return true;
  }

  /// The records from `offset`; none when not all of them are there.
  template <class T>
  std::vector<T> ReadTable(std::uint64_t offset, std::uint64_t count) const {
    if (count > kMaxTable / sizeof(T) || !IsInside(offset, count * sizeof(T))) return {};
    std::vector<T> records(count);
    if (!Read(offset, records.data(), count * sizeof(T))) return {};
    return records;
  }

 private:
  TDescriptor m_file;
  std::uint64_t m_size = 0;
};

}  // namespace

/// Follows the way of the loader: headers, segments, dynamic section, and from there the tables.
class TElfFile::TReader {
 public:
  TReader(const TPieces& file, TElfFile& elf) : m_file(file), m_elf(elf) {}

  void Read(EContent content) {
    m_elf.m_fault = ReadHeader();
    if (m_elf.m_fault.empty()) m_elf.m_fault = ReadSegments();
    if (m_elf.m_fault.empty()) m_elf.m_fault = ReadDynamic();
    if (m_elf.m_fault.empty() && content == EContent::kSymbols) ReadSymbols();
  }

 private:
  std::string ReadHeader() {
    unsigned char start[20] = {};
    if (!m_file.Read(0, start, sizeof start) || std::memcmp(start, ELFMAG, SELFMAG) != 0) {
      return "is no library (no ELF header)";
    }
    const bool isLittle = start[EI_DATA] == ELFDATA2LSB;
    const unsigned int machine = isLittle ? start[18] | (unsigned{start[19]} << 8U)
                                          : start[19] | (unsigned{start[18]} << 8U);
    if (machine != kThisMachine) {
      return "is for " + GetMachineName(machine) + ", this machine is " +
             GetMachineName(kThisMachine);
    }
    if (start[EI_CLASS] != kThisClass || start[EI_DATA] != kThisOrder) {
      return std::string("is a ") + (start[EI_CLASS] == ELFCLASS32 ? "32" : "64") +
             "-bit library of another kind, this machine needs " +
             std::to_string(8 * sizeof(void*)) + " bit";
    }
    if (!m_file.Read(0, &m_header, sizeof m_header)) return "is cut off within its ELF header";
    if (m_header.e_type != ET_DYN) return "is no shared library (another kind of ELF file)";
    return {};
  }

  /// The loader maps what a segment names, there or not; touching what is not ends the process.
  std::string ReadSegments() {
    if (m_header.e_phentsize != sizeof(ElfW(Phdr)) || m_header.e_phnum == 0) {
      return "is damaged: it has no program headers of this machine";
    }
    m_segments = m_file.ReadTable<ElfW(Phdr)>(m_header.e_phoff, m_header.e_phnum);
    if (m_segments.empty()) return "is cut off within its program headers";
    for (const ElfW(Phdr) & segment : m_segments) {
      if (segment.p_type != PT_LOAD || m_file.IsInside(segment.p_offset, segment.p_filesz)) {
        continue;
      }
      return "is cut off: it has " + std::to_string(m_file.GetSize()) +
             " bytes, and a segment of it ends behind them";
    }
    return {};
  }

  /// Where the bytes at an address of the loaded library are in the file, and how many of its
  /// segment follow.
  struct TPlace {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
  };
  std::optional<TPlace> Locate(std::uint64_t address) const {
    for (const ElfW(Phdr) & segment : m_segments) {
      if (segment.p_type != PT_LOAD || address < segment.p_vaddr) continue;
      const std::uint64_t distance = address - segment.p_vaddr;
      if (distance >= segment.p_filesz) continue;
      return TPlace{segment.p_offset + distance, segment.p_filesz - distance};
    }
    return std::nullopt;
  }

  std::string ReadDynamic() {
    const auto segment =
        std::find_if(m_segments.begin(), m_segments.end(),
                     [](const ElfW(Phdr) & other) { return other.p_type == PT_DYNAMIC; });
    if (segment == m_segments.end()) return "is no shared library (no dynamic section)";
    const auto place = Locate(segment->p_vaddr);
    if (!place || place->size < segment->p_filesz) {
      return "is damaged: its dynamic section is outside of it";
    }
    m_dynamic = m_file.ReadTable<ElfW(Dyn)>(place->offset, segment->p_filesz / sizeof(ElfW(Dyn)));
    const auto end = std::find_if(m_dynamic.begin(), m_dynamic.end(),
                                  [](const ElfW(Dyn) & entry) { return entry.d_tag == DT_NULL; });
    if (end == m_dynamic.end()) return "is damaged: its dynamic section has no end";
    m_dynamic.erase(end, m_dynamic.end());
    const auto texts = LocateTable(DT_STRTAB);
    if (!texts || !LocateTable(DT_SYMTAB)) return "is damaged: its names are outside of it";
    const std::uint64_t size = std::min(texts->size, FindEntry(DT_STRSZ).value_or(0));
    m_texts = m_file.ReadTable<char>(texts->offset, size);
    for (const ElfW(Dyn) & entry : m_dynamic) {
      if (entry.d_tag != DT_NEEDED) continue;
      std::string text = GetText(entry.d_un.d_val);
      if (!text.empty()) m_elf.m_needed.push_back(std::move(text));
    }
    return {};
  }

  std::optional<std::uint64_t> FindEntry(std::int64_t tag) const {
    for (const ElfW(Dyn) & entry : m_dynamic) {
      if (entry.d_tag == tag) return entry.d_un.d_val;
    }
    return std::nullopt;
  }

  std::optional<TPlace> LocateTable(std::int64_t tag) const {
    const auto address = FindEntry(tag);
    return address ? Locate(*address) : std::nullopt;
  }

  std::string GetText(std::uint64_t place) const {
    if (place >= m_texts.size()) return {};
    return std::string(m_texts.data() + place,
                       strnlen(m_texts.data() + place, m_texts.size() - place));
  }

  void ReadSymbols() {
    const auto table = LocateTable(DT_SYMTAB);
    const auto count = CountSymbols();
    if (!count || *count > table->size / sizeof(ElfW(Sym))) return;
    const auto symbols = m_file.ReadTable<ElfW(Sym)>(table->offset, *count);
    m_elf.m_hasAllSymbols = symbols.size() == *count;
    for (const ElfW(Sym) & symbol : symbols) {
      if (symbol.st_shndx == SHN_UNDEF) continue;
      std::string name = GetText(symbol.st_name);
      if (!name.empty()) m_elf.m_symbols.push_back(std::move(name));
    }
  }

  /// The table has no length of its own; those of the hash tables over it tell.
  std::optional<std::uint64_t> CountSymbols() const {
    if (const auto place = LocateTable(DT_HASH)) {
      const auto sizes = m_file.ReadTable<THashWord>(place->offset, 2);
      if (!sizes.empty()) return sizes[1];
    }
    const auto place = LocateTable(DT_GNU_HASH);
    return place ? CountHashed(*place) : std::nullopt;
  }

  /// The newer hash table: sizes, filter words, the first symbol of each bucket, and chains whose
  /// last element is odd.
  std::optional<std::uint64_t> CountHashed(const TPlace& place) const {
    const auto sizes = m_file.ReadTable<std::uint32_t>(place.offset, 4);
    if (sizes.empty()) return std::nullopt;
    const std::uint64_t first = sizes[1];
    const std::uint64_t start = sizeof(std::uint32_t) * 4 + sizes[2] * sizeof(ElfW(Addr));
    const std::uint64_t behind = start + std::uint64_t{sizes[0]} * sizeof(std::uint32_t);
    if (behind > place.size) return std::nullopt;
    const auto buckets = m_file.ReadTable<std::uint32_t>(place.offset + start, sizes[0]);
    if (buckets.empty()) return std::nullopt;
    const std::uint64_t last = *std::max_element(buckets.begin(), buckets.end());
    if (last < first) return first;  // None is defined.
    const std::uint64_t most = std::min(place.size - behind, kMaxTable) / sizeof(std::uint32_t);
    const auto chains = m_file.ReadTable<std::uint32_t>(place.offset + behind, most);
    for (std::uint64_t at = last - first; at < chains.size(); ++at) {
      if ((chains[at] & 1U) != 0) return first + at + 1;
    }
    return std::nullopt;
  }

  const TPieces& m_file;
  TElfFile& m_elf;
  ElfW(Ehdr) m_header = {};
  std::vector<ElfW(Phdr)> m_segments;
  std::vector<ElfW(Dyn)> m_dynamic;
  std::vector<char> m_texts;
};

TElfFile::TElfFile(const std::string& file, EContent content) {
  const TPieces pieces(file, m_fault);
  if (m_fault.empty()) TReader(pieces, *this).Read(content);
}

}  // namespace NZEPQEL20

// Memory whose end nobody can pass unnoticed, and memory that tells whether it was read.
#pragma once

#include <cstddef>
#include <string>

/// Some bytes in pages of their own, which end where a page begins that nobody may touch: whoever reads or writes past
/// the end crashes there and then.
class GuardedMemory {
  public:
    explicit GuardedMemory(std::size_t size);
    GuardedMemory(const GuardedMemory &) = delete;
    GuardedMemory &operator=(const GuardedMemory &) = delete;
    ~GuardedMemory();

    void *data() const { return pages + length - size; }

    /// From here on nobody may write.
    void make_read_only();
    /// From here until unseal() nobody may touch the bytes at all.
    void seal();
    void unseal();

  private:
    std::size_t size;
    std::size_t length; ///< That of the pages in front of the guard.
    unsigned char *pages;
};

/// A null-terminated text in such memory, which nobody may write to.
class GuardedText {
  public:
    explicit GuardedText(const std::string &text);

    char *characters() const { return static_cast<char *>(memory.data()); }
    void seal() { memory.seal(); }

  private:
    GuardedMemory memory;
};

/// Whole pages of zeros, of which each tells whether it was touched since it was made. Single-threaded readers only.
class WatchedMemory {
  public:
    static constexpr std::size_t most_pages = 4;

    explicit WatchedMemory(std::size_t pages);
    WatchedMemory(const WatchedMemory &) = delete;
    WatchedMemory &operator=(const WatchedMemory &) = delete;
    ~WatchedMemory();

    void *data() const { return begin; }
    std::size_t size() const;
    bool was_touched(std::size_t page) const { return touched[page]; }

    /// If the address is in here, opens its page and notes that; for the handler of segmentation faults.
    bool open(void *address);

  private:
    std::size_t pages;
    unsigned char *begin;
    bool touched[most_pages] = {};
};

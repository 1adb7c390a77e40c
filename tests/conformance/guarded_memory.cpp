// Guarded and watched pages.
#include "guarded_memory.h"

#include "check.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace {

const auto page_size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));

unsigned char *map_pages(std::size_t length, int protection) {
    void *found = mmap(nullptr, length, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(found != MAP_FAILED, "no memory for the check itself");
    return static_cast<unsigned char *>(found);
}

// What is being watched; the handler looks through it.
WatchedMemory *watched[4] = {};

void handle_fault(int, siginfo_t *info, void *) {
    for (WatchedMemory *memory : watched)
        if (memory && memory->open(info->si_addr))
            return;
    // A crash like any other: it happens again as soon as the handler has returned.
    signal(SIGSEGV, SIG_DFL);
}

} // namespace

GuardedMemory::GuardedMemory(std::size_t bytes)
    : size(bytes), length((std::max<std::size_t>(bytes, 1) + page_size - 1) / page_size * page_size),
      pages(map_pages(length + page_size, PROT_READ | PROT_WRITE)) {
    mprotect(pages + length, page_size, PROT_NONE);
}

GuardedMemory::~GuardedMemory() { munmap(pages, length + page_size); }

void GuardedMemory::make_read_only() { mprotect(pages, length, PROT_READ); }
void GuardedMemory::seal() { mprotect(pages, length, PROT_NONE); }
void GuardedMemory::unseal() { mprotect(pages, length, PROT_READ | PROT_WRITE); }

GuardedText::GuardedText(const std::string &text) : memory(text.size() + 1) {
    std::memcpy(memory.data(), text.c_str(), text.size() + 1);
    memory.make_read_only();
}

WatchedMemory::WatchedMemory(std::size_t count) : pages(count), begin(map_pages(size(), PROT_NONE)) {
    require(pages <= most_pages, "too many pages to watch");
    *std::find(std::begin(watched), std::end(watched) - 1, nullptr) = this;
    struct sigaction action = {};
    action.sa_sigaction = handle_fault;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, nullptr);
}

WatchedMemory::~WatchedMemory() {
    std::replace(std::begin(watched), std::end(watched), this, static_cast<WatchedMemory *>(nullptr));
    munmap(begin, size());
}

std::size_t WatchedMemory::size() const { return pages * page_size; }

bool WatchedMemory::open(void *address) {
    const auto *byte = static_cast<const unsigned char *>(address);
    if (byte < begin || byte >= begin + size())
        return false;
    const std::size_t page = static_cast<std::size_t>(byte - begin) / page_size;
    touched[page] = true;
    return mprotect(begin + page * page_size, page_size, PROT_READ | PROT_WRITE) == 0;
}

#include "engine/storage/MappingWatch.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

namespace qel::engine {

/// An entry of the list that the signal handler walks. Entries are reused and never freed, so the handler
/// needs no lock.
struct WatchedMapping {
    std::atomic<std::uintptr_t> first = 0; ///< 0: free
    std::atomic<std::uintptr_t> last = 0;
    std::atomic<bool> hasLostBytes = false;
    std::unique_ptr<WatchedMapping> next; ///< set before the entry joins the list

    bool Holds(std::uintptr_t address) const {
        const std::uintptr_t start = first.load();
        return start != 0 && start <= address && address < last.load() && first.load() == start;
    }
};

namespace {

static_assert(std::atomic<std::uintptr_t>::is_always_lock_free);

// Signal handlers take no argument of ours, so their state is global.
std::atomic<WatchedMapping*> mappings = nullptr;
std::uintptr_t memoryPage = 0;
struct sigaction formerAction = {};

/// Maps a page of zeros at the pointer when it lies in a watched mapping.
bool PutZeros(void* pointer) {
    const auto address = reinterpret_cast<std::uintptr_t>(pointer);
    for (WatchedMapping* mapping = mappings.load(); mapping != nullptr; mapping = mapping->next.get()) {
        if (!mapping->Holds(address)) {
            continue;
        }
        mapping->hasLostBytes = true; // before any thread can read a zero
        void* const page = static_cast<std::byte*>(pointer) - address % memoryPage;
        constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
        return ::mmap(page, memoryPage, PROT_READ, flags, -1, 0) != MAP_FAILED;
    }
    return false;
}

/// Runs the handler that was installed before this one.
void PassOn(int signal, siginfo_t* info, void* context) {
    if ((formerAction.sa_flags & SA_SIGINFO) != 0) {
        formerAction.sa_sigaction(signal, info, context);
    } else if (formerAction.sa_handler == SIG_DFL || formerAction.sa_handler == SIG_IGN) {
        ::sigaction(signal, &formerAction, nullptr);
        if (info->si_code <= 0) { // sent by a process; a faulting read repeats by itself
            ::raise(signal);
        }
    } else {
        formerAction.sa_handler(signal);
    }
}

void OnBusError(int signal, siginfo_t* info, void* context) {
    const int error = errno;
    if (info->si_code <= 0 || !PutZeros(info->si_addr)) {
        PassOn(signal, info, context);
    }
    errno = error;
}

void InstallHandler() {
    memoryPage = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    struct sigaction action = {};
    action.sa_sigaction = OnBusError;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGBUS, &action, &formerAction);
}

/// Returns a free entry, or a new one at the head of the list.
WatchedMapping* TakeEntry() {
    for (WatchedMapping* mapping = mappings.load(); mapping != nullptr; mapping = mapping->next.get()) {
        if (mapping->first.load() == 0) {
            return mapping;
        }
    }
    auto added = std::make_unique<WatchedMapping>();
    added->next.reset(mappings.load());
    mappings = added.get();
    return added.release();
}

std::mutex& EntriesMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

MappingWatch::MappingWatch(std::span<const std::byte> mapping) {
    static std::once_flag once;
    std::call_once(once, InstallHandler);
    const auto first = reinterpret_cast<std::uintptr_t>(mapping.data());
    const std::lock_guard lock(EntriesMutex());
    mapping_ = TakeEntry();
    mapping_->hasLostBytes = false;
    mapping_->last = first + mapping.size();
    mapping_->first = first; // from here on the handler sees it
}

MappingWatch::~MappingWatch() {
    const std::lock_guard lock(EntriesMutex());
    mapping_->first = 0;
}

bool MappingWatch::HasLostBytes() const { return mapping_->hasLostBytes; }

} // namespace qel::engine

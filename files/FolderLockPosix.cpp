#include "files/FolderLock.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace qel {

FolderLock::FolderLock(const std::filesystem::path& file)
    : lock_(::open(file.has_parent_path() ? file.parent_path().c_str() : ".",
                   O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 10s;
    const auto descriptor = static_cast<int>(lock_);
    while (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (std::chrono::steady_clock::now() > end) {
            isFree_ = false;
            return;
        }
        std::this_thread::sleep_for(5ms);
    }
}

FolderLock::~FolderLock() {
    if (lock_ >= 0) {
        ::close(static_cast<int>(lock_));
    }
}

} // namespace qel

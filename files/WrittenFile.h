#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

// The system's calls of AtomicFile. A failure is an error number of <cerrno>; 0 is success.

namespace qel::files {

/// Follows a symbolic link, so that the link stays and its target is replaced.
std::filesystem::path ResolveLink(const std::filesystem::path& path);

/// Opens a file that is new, for reading and writing, and locks it: by this, others know that somebody writes
/// it. EEXIST when the name is taken.
int CreateLocked(const std::filesystem::path& path, bool isPrivate, int& descriptor);
/// Gives the open file the rights of the file that it will replace.
int TakeOverRights(int descriptor, const std::filesystem::path& replaced);
int WriteAll(int descriptor, std::span<const std::byte> bytes);
/// Several threads may write and read other places of one file with the next two.
int WriteAllAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes);
int ReadAllAt(int descriptor, std::uint64_t offset, std::span<std::byte> bytes);
/// Puts the open file on the disk. It cannot be written afterwards.
int Sync(int& descriptor);
/// Puts the synced file in the place of `target`. Closes it: then the descriptor is -1, and after a failure
/// the file is removed.
int Move(int& descriptor, const std::filesystem::path& from, const std::filesystem::path& target);
void CloseAndRemove(int descriptor, const std::filesystem::path& path);
/// Removes the file unless a living process holds it.
void RemoveIfAbandoned(const std::filesystem::path& path);

} // namespace qel::files

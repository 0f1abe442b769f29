// file_facts.h - what there is to say about a file that should not be there.
#ifndef VELKCTL_FILES_FILE_FACTS_H_
#define VELKCTL_FILES_FILE_FACTS_H_

#include <string>

#include <sys/stat.h>

namespace velkctl {

// "5 seconds", "3 minutes", "2 days"
std::string InWords(long long seconds);

// How long ago the file was changed.
std::string AgeOf(const struct stat& facts);

// "a symbolic link", "a folder"
std::string KindOf(mode_t mode);

// Says whether this user may remove it: where everybody may write, often only the owner may.
bool MayRemove(const std::string& path, const struct stat& facts);

// True if root alone can change the file or put another one in its place: file and folders are
// root's and not writable by others, and none of them is a symbolic link.
bool IsRootsAlone(const std::string& path);

// "rm /var/tmp/interfaces"
std::string RemovalOf(const std::string& path, const struct stat& facts);

}  // namespace velkctl

#endif  // VELKCTL_FILES_FILE_FACTS_H_

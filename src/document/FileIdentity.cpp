#include "document/FileIdentity.h"

#include <filesystem>
#include <sys/stat.h>

std::string fileIdentity(const std::string& path)
{
    namespace fs = std::filesystem;
    struct stat status {
    };
    if (::stat(path.c_str(), &status) == 0)
        return "inode " + std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    std::error_code error;
    return "path " + fs::weakly_canonical(path, error).string();
}

bool sameFile(const std::string& a, const std::string& b)
{
    return fileIdentity(a) == fileIdentity(b);
}

FileSet::FileSet(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths)
        m_identities.insert(fileIdentity(path));
}

bool FileSet::contains(const std::string& path) const
{
    return m_identities.count(fileIdentity(path)) != 0;
}

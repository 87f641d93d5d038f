#pragma once
// Whether two paths name one file: by device and inode when the file exists (so a file reached
// two ways, through a link or another spelling, is one), otherwise by the path made absolute and
// normal. Used to refuse writing over a file a command or a dialog reads. Any thread.
#include <string>
#include <unordered_set>
#include <vector>

// What names a file: its device and inode when it exists, otherwise its normal absolute path.
std::string fileIdentity(const std::string& path);
// True when both paths name the same file (an existing file reached two ways counts).
bool sameFile(const std::string& a, const std::string& b);

// A set of files named once, asked about many times: a batch of many documents checks each
// output against every input without resolving the inputs again.
class FileSet
{
public:
    explicit FileSet(const std::vector<std::string>& paths);
    bool contains(const std::string& path) const;

private:
    std::unordered_set<std::string> m_identities;
};

#pragma once
// The failure of a document operation or a command: a name and a reason. Commands catch it
// and show an alert whose title is the name and whose message is the reason.
#include <stdexcept>
#include <string>

class DocumentException : public std::runtime_error
{
public:
    DocumentException(std::string name, std::string reason)
        : std::runtime_error(name + ": " + reason), m_strName(std::move(name)), m_strReason(std::move(reason))
    {
    }
    const std::string& name() const { return m_strName; }
    const std::string& reason() const { return m_strReason; }

    // Allocation failure of a sample block or a work buffer.
    static DocumentException memoryError(const std::string& reason = "Unable to allocate memory")
    {
        return DocumentException("Memory Error", reason);
    }

    // A document of more frames than the program holds (the readers' one-hour limit).
    static DocumentException tooManyFrames(long long frames, long long limit)
    {
        return DocumentException("Document Too Long",
                                 std::to_string(frames) + " frames; a document holds at most " +
                                     std::to_string(limit) + " (one hour of 10 ms frames)");
    }

private:
    std::string m_strName;
    std::string m_strReason;
};

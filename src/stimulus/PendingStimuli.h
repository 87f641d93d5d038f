#pragma once
// Prepared stimuli kept between the two passes of a batch whose files share one gain: the first
// pass prepares every file and measures it, the gain is chosen from all the figures, the second
// pass writes. The stimuli wait in a private temporary folder (in /dev/shm, or TMPDIR when
// set), one raw file each, so that worker processes of the first pass can hand them to the
// second.
// Made by one process; keep() and take() may run in its forked children, each for its own
// index. The folder goes away with the object in the process that made it.
// Failures throw DocumentException naming the file.
#include "stimulus/Stimulus.h"

#include <string>
#include <sys/types.h>

class PendingStimuli
{
public:
    PendingStimuli();
    ~PendingStimuli();
    PendingStimuli(const PendingStimuli&) = delete;
    PendingStimuli& operator=(const PendingStimuli&) = delete;

    void keep(std::size_t index, const Stimulus& stimulus) const;
    Stimulus take(std::size_t index) const;

private:
    std::string path(std::size_t index) const;

    std::string m_strFolder;
    pid_t m_owner;
};

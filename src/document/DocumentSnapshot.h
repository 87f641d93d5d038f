#pragma once
// One entry of the undo or redo list: the document as it stood, kept either as the whole
// snapshot text (what Save_STK_FileType writes with all rows) or, as every edit records it, as
// the head of that text (settings, colours, selection flags, names) and an image of its frames
// that shares every unchanged block of 256 frames with the entries before it. Restoring either
// gives the same document.
#include "document/FrameImage.h"

#include <string>

class DocumentSnapshot
{
public:
    DocumentSnapshot() = default;
    // A snapshot given as its whole text (read as Read_STK_FileTypeDoUndo reads it).
    static DocumentSnapshot ofText(std::string text)
    {
        DocumentSnapshot s;
        s.m_text = std::move(text);
        return s;
    }
    static DocumentSnapshot ofImage(std::string head, FrameImage frames)
    {
        DocumentSnapshot s;
        s.m_text = std::move(head);
        s.m_frames = std::move(frames);
        s.m_bImage = true;
        return s;
    }
    bool isImage() const { return m_bImage; }
    // The whole text, or the head of an image.
    const std::string& text() const { return m_text; }
    const FrameImage& frames() const { return m_frames; }

private:
    std::string m_text;
    FrameImage m_frames;
    bool m_bImage = false;
};

#pragma once
// One parameter document as Python holds it: a MyDocument whose grid is the only copy of its
// values (the table data is never built, so synthesis and saving read the grid, as
// tessaphon-cli does), with every grid column stored so that numpy may view the grid in place.
//
// The grid: `frames()` columns of kGridRows signed 16-bit cells, one column after the other
// (cell (frame f, row r) at gridData()[f * kGridRows + r]); rows in the parameter row order.
// The grid is made once and never moved while the object lives, so views onto it stay valid.
//
// Values outside a row's limits may sit in the grid: numpy writes whatever it is given, and the
// trace entry writes f0 = 0 for unvoiced frames on purpose. Synthesis and saving use the values
// as they stand, as tessaphon-cli does; setRow() and clampToLimits() correct values to the
// limits as the table corrects a typed value.
//
// Thread safety: synthesize(), write(), copy() and the edits lock the object's mutex; call them
// from any thread. Views written from several threads at once are the caller's affair.
#include "document/MyDocument.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class PythonDocument
{
public:
    // Takes over a document; one whose table data was built is read back from its text first,
    // so that its grid holds what the table data holds.
    explicit PythonDocument(std::unique_ptr<MyDocument> document);

    // A parameter document or WAVE file from disk, as the workbench opens it. Throws
    // FileSystemError, BadArgument (damaged file, with its name and the fault), OutOfMemory.
    // `warnings` receives one line per value clamped or frame missing.
    static std::unique_ptr<PythonDocument> read(const std::string& path, std::vector<std::string>& warnings);
    // A new document with factory values. Throws BadArgument for a length outside 1 ms .. one
    // hour, an interval outside 1 .. 1000 ms, or a rate other than 11025 or 22050 Hz.
    static std::unique_ptr<PythonDocument> make(double lengthMS, int intervalMS, int sampleRate);

    std::unique_ptr<PythonDocument> copy();
    // A separate MyDocument read from the document's text (values clamped first), for code that
    // builds table data of its own.
    std::unique_ptr<MyDocument> copyDocument();

    int frames() const;
    int intervalMS() const;
    double lengthMS() const;
    int sampleRate() const; // the rate of the next synthesis
    const char* rowName(int row) const;
    // The row of a parameter name ("f0", "f1", ...), or -1.
    static int rowNamed(const std::string& name);
    const ParameterDefinition& parameter(int row) const;

    std::int16_t* gridData() { return m_pGrid; }

    // Shown rows and anchors, copied out and in (under the lock).
    std::vector<bool> selected() const;
    void setSelected(const std::vector<bool>& shown);
    std::vector<bool> anchors() const; // frames x 48, frame by frame
    void setAnchors(const std::vector<bool>& anchors);

    // Writes one row's values (one per frame), rounded and clamped to the row's limits as the
    // table clamps a typed value. Throws BadArgument for a count other than frames().
    void setRow(int row, const std::vector<double>& values);

    // Every grid value of rows 0..47 brought within its row's limits.
    void clampToLimits();
    // Synthesizes and hands over the block of samples (floats, full scale +-1, at sampleRate()):
    // `count` samples from its start. Throws OutOfMemory. Needs no interpreter lock.
    struct Audio {
        std::unique_ptr<MemoryBlock> block;
        std::size_t count = 0;
    };
    Audio synthesize();
    // The parameter document's text.
    std::string text();
    // Writes the document atomically. Throws FileSystemError.
    void write(const std::string& path);

    MyDocument& document() { return *m_document; }

private:
    void storeGrid();

    std::unique_ptr<MyDocument> m_document;
    std::int16_t* m_pGrid = nullptr;
    mutable std::mutex m_mutex;
};

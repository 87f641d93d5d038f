#pragma once
// A continuum between two parameter documents A and B of the same frames and interval: step k
// of N has weight w = (k - 1) / (N - 1), and each interpolated cell is (1 - w) a + w b on the
// chosen frequency scale, converted back, rounded to the nearest integer and kept within the
// row's limits (A's). The scale applies to the frequency rows (f0, whose tenths of hertz are
// converted to hertz and back, f1-f8, fnz, fnp); every other row is interpolated linearly.
// Rows not interpolated, the settings, the shown rows and the anchors are A's.
//
// Holds copies of both documents' values and A's text, so the documents may go once it is
// made. makeStep(), value() and rowMean() may be called from several threads at once.
// Throws DocumentException (name "Continuum") for documents that do not match and for bad
// settings; the reason says why.
#include "continuum/FrequencyScale.h"

#include <memory>
#include <string>
#include <vector>

class MyDocument;

struct ContinuumSettings {
    int steps = 11; // N >= 2
    FrequencyScale::Kind scale = FrequencyScale::Hz;
    std::vector<int> rows; // parameter rows; empty: every row where A and B differ
};

class Continuum
{
public:
    static constexpr int kMaxSteps = 1000;

    Continuum(MyDocument& a, MyDocument& b, const ContinuumSettings& settings);

    int steps() const { return m_nSteps; }
    int frames() const { return m_nFrames; }
    const std::vector<int>& rows() const { return m_rows; }
    const char* rowName(int row) const;
    double weight(int step) const; // step 1 .. N

    // The interpolated value of a row (one of rows()) in a frame (0-based) at a step.
    int value(int row, int frame, int step) const;
    // The mean of an interpolated row over the frames at a step.
    double rowMean(int row, int step) const;
    // The document of a step: A read back from its text, the interpolated rows replaced.
    std::unique_ptr<MyDocument> makeStep(int step) const;

    // Whether the frames and intervals of two documents allow a continuum.
    static bool compatible(const MyDocument& a, const MyDocument& b);
    // True for the rows the scale applies to.
    static bool isFrequencyRow(int row);

private:
    double interpolate(int row, double a, double b, double w) const;

    int m_nSteps;
    int m_nFrames;
    int m_nInterval;
    FrequencyScale m_scale;
    std::vector<int> m_rows;
    std::vector<std::vector<int>> m_a, m_b; // [row][frame] for every parameter row
    std::vector<int> m_min, m_max;          // A's limits by row
    std::vector<const char*> m_names;
    std::string m_aText; // A as a parameter document
};

#pragma once
// Writes a continuum into a folder: for step k of N the document "<stem>_<k>.stk" (k zero-padded
// to the width of N) and, unless left out, its synthesis "<stem>_<k>.wav" (synthesized as a
// single document is), and "manifest.csv": one line per step with step, weight, document, wave
// and the mean of each interpolated row over the frames. Every file is written atomically.
// writeStep() may run for different steps on several threads at once; each throws
// DocumentException naming the file it could not write.
#include "continuum/Continuum.h"

#include <string>
#include <vector>

class ContinuumWriter
{
public:
    ContinuumWriter(const Continuum& continuum, std::string folder, std::string stem, bool withWave);

    std::string documentPath(int step) const;
    std::string wavePath(int step) const; // empty without WAVE files
    std::string manifestPath() const;
    // Every file the continuum writes, in order.
    std::vector<std::string> outputs() const;

    void writeStep(int step) const;
    std::string manifestText() const;
    void writeManifest() const;

    // The stem of step k of N: "<stem>_<k>", k zero-padded to the width of N.
    static std::string stepStem(const std::string& stem, int step, int steps);

private:
    const Continuum& m_continuum;
    std::string m_strFolder;
    std::string m_strStem;
    bool m_bWithWave;
};

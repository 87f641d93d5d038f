#pragma once
// Writes a continuum into a folder: for step k of N the document "<stem>_<k>.stk" (k zero-padded
// to the width of N) and, unless left out, its synthesis "<stem>_<k>.wav" (synthesized as a
// single document is), and "manifest.csv": one line per step with step, weight, document, wave
// and the mean of each interpolated row over the frames. Every file is written atomically.
// writeStep() may run for different steps on several threads at once; each throws
// DocumentException naming the file it could not write.
// Stimulus output: the audio files may take another extension (".flac"), and the manifest may
// carry the figures of each audio file (name, duration_ms, rate, rms_db, peak_db, clipped,
// gain_db) after its other columns; the caller then writes the audio itself.
#include "continuum/Continuum.h"
#include "stimulus/StimulusFile.h"

#include <string>
#include <vector>

class ContinuumWriter
{
public:
    ContinuumWriter(const Continuum& continuum, std::string folder, std::string stem, bool withWave);

    int steps() const { return m_continuum.steps(); }
    std::string documentPath(int step) const;
    std::string wavePath(int step) const; // empty without WAVE files
    std::string manifestPath() const;
    // Every file the continuum writes, in order.
    std::vector<std::string> outputs() const;

    // ".wav" unless changed, before any path is asked for.
    void setAudioExtension(std::string extension) { m_strAudioExtension = std::move(extension); }

    void writeStep(int step) const;
    // Writes the step's document and answers it, synthesized when the continuum has audio.
    std::unique_ptr<MyDocument> writeStepDocument(int step) const;
    // `figures`, when given, holds one entry per step.
    std::string manifestText(const std::vector<StimulusFigures>* figures = nullptr) const;
    void writeManifest(const std::vector<StimulusFigures>* figures = nullptr) const;

    // The stem of step k of N: "<stem>_<k>", k zero-padded to the width of N.
    static std::string stepStem(const std::string& stem, int step, int steps);

private:
    const Continuum& m_continuum;
    std::string m_strFolder;
    std::string m_strStem;
    bool m_bWithWave;
    std::string m_strAudioExtension = ".wav";
};

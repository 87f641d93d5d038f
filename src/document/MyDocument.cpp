#include "document/MyDocument.h"

#include "document/CountedText.h"
#include "document/DocumentException.h"
#include "document/InstalledHook.h"
#include "document/SynthesisHook.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <new>

namespace
{
using ConfigurationLoader = InstalledHook<struct ConfigurationLoaderTag, MyDocument::ConfigurationHook>;
using ConfigurationWriter = InstalledHook<struct ConfigurationWriterTag, MyDocument::ConfigurationHook>;
using Synthesizer = InstalledHook<struct SynthesizerTag, SynthesisFunction>;
} // namespace

void MyDocument::setConfigurationLoader(ConfigurationHook loader)
{
    ConfigurationLoader::install(std::move(loader));
}

void MyDocument::setConfigurationWriter(ConfigurationHook writer)
{
    ConfigurationWriter::install(std::move(writer));
}

void setSynthesisFunction(SynthesisFunction function)
{
    Synthesizer::install(function);
}

void MyDocument::Synthesize()
{
    if (!Synthesizer::installed())
        throw DocumentException("Synthesis", "no synthesizer is installed in this program");
    Synthesizer::function()(*this);
}

void MyDocument::CopyCurrentToPrevious()
{
    m_Channel[1]->Duplicate(*m_Channel[0]);
}

void MyDocument::MoveCurrentToPrevious()
{
    m_Channel[1]->DuplicateTakingSamples(*m_Channel[0]);
}

void MyDocument::saveConfig()
{
    if (ConfigurationWriter::installed())
        ConfigurationWriter::function()(*this);
}

MyDocument::MyDocument()
{
    // Flags, table data and undo lists have their initial values from the declarations.
    for (auto& channel : m_Channel)
        channel = std::make_unique<Channels>();
    for (int i = 0; i < 10; ++i) {
        m_bgColor[i] = Color::white();
        m_ColorTracing[i] = Color::black();
    }
    setAnalysisDefaults(11025.0);
    SetFileDefaultValues();
    if (ConfigurationLoader::installed())
        ConfigurationLoader::function()(*this);
}

MyDocument::~MyDocument() = default;

PitchSettings PitchSettings::fromDocument(const MyDocument& document)
{
    return document;
}

SpectrogramSettings SpectrogramSettings::fromDocument(const MyDocument& document)
{
    return document;
}

void MyDocument::setAnalysisDefaults(double sampleRate)
{
    const int rate = static_cast<int>(sampleRate);
    const int frequencyRange = (rate / 2000) * 1000;
    int fftOrder = static_cast<int>(2.0 * sampleRate / 2000.0 + 4.0);
    fftOrder -= fftOrder % 2;
    int specOrder = static_cast<int>(2.0 * sampleRate / 2000.0) + 4;
    specOrder -= specOrder % 2;

    // What the analyses compute with: the factory values, then those that depend on the rate.
    pitchSettings() = PitchSettings{};
    spectrogramSettings() = SpectrogramSettings{};
    fftlpcSettings() = FFTLPCSettings{};
    m_nFFTAppliedWindowLength = static_cast<int>(256000.0 / sampleRate);
    m_nFFTfrequencyRange = frequencyRange;
    m_nLPCNumberofCoefficients = fftOrder > 400 ? 400 : fftOrder;
    m_nSpecfrequencyRange = frequencyRange;
    m_nSpecLPCNumberofCoefficients = specOrder;

    m_nFFTWindowLengthSelector = 3;
    m_bFFTDrawLPC = 1;
    m_bFFTAbsolute = 1;
    m_nFFTAbsoluteRange = 80;
    m_bFFTInches = 1;
    m_bFFTColor = 1;
    m_dFFTWidth = 6.0;
    m_dFFTHeight = 4.0;
    m_bFFTDrawFrequencyGrid = 1;
    m_nFFTFrequencyGrid = 1000;
    m_bFFTDrawDBGrid = 1;
    m_nFFTDBGrid = 20;

    m_nSpecWindowLengthSelector = 2;
    m_bSpecDrawFrequencyGrid = 1;
    m_nSpecFrequencyGrid = 1000;
    m_bSpecDrawTimeGrid = 1;
    m_nSpecTimeGrid = 500;
    m_bSpecInches = 1;
    m_dSpecWidth = 6.0;
    m_dSpecHeight = 4.0;

    m_nPitchDisplayLow = 50;
    m_nPitchDisplayHigh = 500;
    m_bPitchDrawFreqGrid = 1;
    m_nPitchFreqGrid = 50;
    m_bPitchDrawTimeGrid = 1;
    m_nPitchTimeGrid = 1000;
}

void MyDocument::SetFileDefaultValues()
{
    for (auto& channel : m_Channel) {
        channel->m_nParameterNumber = 31;
        channel->m_dLengthMS = 200.0;
        channel->m_nUpdateIntervalMS = 10;
        channel->m_nColumnNum = static_cast<int>(channel->m_dLengthMS / channel->m_nUpdateIntervalMS);
        for (int row = 0; row < kParameterCount; ++row) {
            const ParameterFactoryRow& f = kFactoryParameters[row];
            ParameterDefinition& p = channel->m_Parameters[row];
            p.strName = f.name;
            p.strDefinition = f.definition;
            p.nDefaultValue = f.defaultValue;
            p.nValue = f.defaultValue;
            p.nMinValue = f.minValue;
            p.nMaxValue = f.maxValue;
            p.bSelected = f.selected;
            p.mColor = RGBColor16{65535, 65535, 65535};
            p.nsSetColor = Color::white();
        }
        // Row 23 (a7f) has no colour object, and the white meant for row 47 (gain) sits in
        // spare entry 48: the table has always been laid out so, and saved documents and
        // configurations carry it.
        channel->m_Parameters[23].nsSetColor = Color();
        channel->m_Parameters[47].nsSetColor = Color();
        channel->m_Parameters[48].nsSetColor = Color::white();
    }
}

int MyDocument::updateInterval()
{
    Channels& c = *m_Channel[0];
    if (c.m_nUpdateIntervalMS < 1)
        c.m_nUpdateIntervalMS = 10;
    return c.m_nUpdateIntervalMS;
}

bool MyDocument::SetUpDataGridMemory()
{
    Channels& c = *m_Channel[0];
    const long long columns = c.m_nColumnNum < 0 ? 0 : static_cast<long long>(c.m_nColumnNum);
    // Every frame column starts with the defaults; two spare columns of zeros follow the frames,
    // as the grid has always had. Columns take memory once they are written.
    GridColumn defaults{};
    for (int row = 0; row < kParameterCount; ++row)
        defaults[row] = static_cast<std::int16_t>(c.m_Parameters[row].nDefaultValue);
    c.m_snppDataImage_Col_Row.assign(static_cast<std::size_t>(columns + 2), static_cast<std::size_t>(columns),
                                     defaults);
    return true;
}

void MyDocument::updateChangeCount(ChangeKind kind)
{
    switch (kind) {
    case ChangeDone:
        ++m_nChangeCount;
        break;
    case ChangeUndone:
        --m_nChangeCount;
        break;
    case ChangeCleared:
        m_nChangeCount = 0;
        break;
    }
}

bool MyDocument::CheckParameterNew(const std::string& name, bool batvapv) const
{
    const Channels& c = *m_Channel[0];
    for (int row = 0; row < kParameterCount; ++row) {
        const char* recordName = c.m_Parameters[row].strName;
        if (recordName && name == recordName)
            return true;
        // "atv" is the older name of apv, accepted from the older documents.
        if (batvapv && row == Row::apv && name == "atv")
            return true;
    }
    return false;
}

bool MyDocument::CheckParameter(const char* name, bool batvapv) const
{
    if (!name)
        return false;
    return CheckParameterNew(std::string(name), batvapv);
}

int MyDocument::synthesisSampleRate() const
{
    const Channels& c = *m_Channel[0];
    const bool highFormants = std::any_of(std::begin(kHighFormantRows), std::end(kHighFormantRows),
                                          [&c](int row) { return c.m_Parameters[row].bSelected != 0; });
    return highFormants ? 22050 : 11025;
}

std::string MyDocument::clippingReport() const
{
    if (m_nClippedSamples <= 0)
        return {};
    char peak[48];
    std::snprintf(peak, sizeof peak, " clipped (peak %.1f dB)", 20.0 * std::log10(m_dPeakLevel));
    return countedText(m_nClippedSamples, "sample", "samples") + peak;
}

bool MyDocument::isSilent() const
{
    // A sample below one step of 16 bits is written to a WAVE file as 0.
    return m_nSynthesizedSamples > 0 && m_dPeakLevel < 1.0 / 32768.0;
}

std::string MyDocument::synthesisWarning() const
{
    if (isSilent())
        return "the synthesis is silent: no sample reaches one step of 16 bits (look at gain and the "
               "amplitudes)";
    return clippingReport();
}

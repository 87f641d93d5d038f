// Copy synthesis: the estimation's stages in order, and the result made a document.
#include "copysynth/CopySynthesis.h"

#include "copysynth/FormantRows.h"
#include "copysynth/FormantTracker.h"
#include "copysynth/KlattRender.h"
#include "copysynth/LevelMatching.h"
#include "copysynth/PitchTracker.h"
#include "document/MyDocument.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <stdexcept>

namespace
{

// The signal below this peak is taken for digital silence (about -100 dB of full scale).
constexpr double kSilencePeak = 1e-5;

FrameValues factoryFrame()
{
    FrameValues v{};
    for (int row = 0; row < kParameterCount; ++row)
        v[row] = kFactoryParameters[row].defaultValue;
    return v;
}

void checkArguments(std::size_t count, double sampleRate, const CopySynthesisOptions& o)
{
    if (!(sampleRate >= 8000.0) || !(sampleRate <= 384000.0))
        throw std::invalid_argument("the recording's sample rate is not usable (8000 Hz or more is needed)");
    if (o.outputRate != 0 && o.outputRate != 11025 && o.outputRate != 22050)
        throw std::invalid_argument("the output rate must be 11025 or 22050 Hz");
    if (o.intervalMS < 1 || o.intervalMS > 100)
        throw std::invalid_argument("the frame interval must be 1 to 100 ms");
    if (o.maxFormantHz != 0.0 && (o.maxFormantHz < 3000.0 || o.maxFormantHz > 8000.0))
        throw std::invalid_argument("the maximum formant must be 3000 to 8000 Hz");
    if (!(o.pitchLowHz >= 30.0) || !(o.pitchHighHz <= 1200.0) || o.pitchLowHz >= o.pitchHighHz)
        throw std::invalid_argument("the pitch range must lie within 30 to 1200 Hz, low below high");
    if (o.lpcOrder < 0 || o.lpcOrder > 40 || o.pitchWindowMS < 0.0 || o.pitchWindowMS > 1000.0 ||
        !(o.preEmphasis >= 0.0 && o.preEmphasis < 1.0))
        throw std::invalid_argument("an analysis setting is out of range");
    if (count == 0)
        throw std::invalid_argument("the recording is empty");
}

// The formant ceilings to try: the one asked for, or a range that covers men's, women's and
// children's voices, as far as the recording's band reaches.
std::vector<double> ceilings(const CopySynthesisOptions& o, double sampleRate)
{
    const double top = std::min(sampleRate / 2.0, 6500.0);
    if (o.maxFormantHz > 0.0)
        return {std::min(o.maxFormantHz, sampleRate / 2.0)};
    std::vector<double> list;
    for (double c = 4500.0; c <= top + 1.0; c += 500.0)
        list.push_back(c);
    if (list.empty() || list.back() < top - 250.0)
        list.push_back(top);
    return list;
}

struct Estimation {
    const float* samples;
    std::size_t count;
    double rate;
    const CopySynthesisOptions& options;
    const CopySynthesisProgress& progress;
    std::vector<double> centres; // of columns 0 .. n-2, seconds
    std::vector<bool> voiced;

    bool report(double done) const { return !progress || progress(done); }
};

std::vector<PitchFrame> estimatePitch(Estimation& e)
{
    PitchTrackerSettings s;
    s.lowHz = e.options.pitchLowHz;
    s.highHz = e.options.pitchHighHz;
    s.windowMS = e.options.pitchWindowMS;
    std::vector<PitchFrame> pitch = PitchTracker(s).track(e.samples, e.count, e.rate, e.centres);
    e.voiced.resize(pitch.size());
    for (std::size_t f = 0; f < pitch.size(); ++f)
        e.voiced[f] = pitch[f].f0 > 0.0;
    return pitch;
}

FormantTrackerSettings trackerSettings(const CopySynthesisOptions& o, double ceiling)
{
    FormantTrackerSettings s;
    s.ceiling = ceiling;
    s.order = o.lpcOrder;
    s.preEmphasis = o.preEmphasis;
    return s;
}

using PathSearches = std::vector<std::future<std::vector<FormantFrame>>>;

// The path searches under every ceiling need no voicing: each runs on its own thread while the
// pitch is tracked and answers its own ceiling's path.
PathSearches startPathSearches(const Estimation& e, const std::vector<double>& list)
{
    PathSearches searches;
    for (double ceiling : list)
        searches.push_back(std::async(std::launch::async, [&e, ceiling] {
            return FormantTracker(trackerSettings(e.options, ceiling))
                .path(e.samples, e.count, e.rate, e.centres);
        }));
    return searches;
}

// Tracks under each ceiling; the one whose synthesis comes closest to the recording's spectra
// wins. Each ceiling's trial is made and judged on its own thread; they are compared in the
// order of the list, so the choice does not depend on which finishes first. Answers false when
// cancelled.
bool estimateFormants(const Estimation& e, const LevelMatching& judge, const std::vector<double>& list,
                      PathSearches& searches, std::vector<FrameValues>& frames, int outputRate,
                      double& ceiling)
{
    struct Trial {
        std::vector<FrameValues> frames;
        double distance = 0.0;
    };
    std::vector<std::future<Trial>> trials;
    for (std::size_t i = 0; i < list.size(); ++i)
        trials.push_back(std::async(std::launch::async, [&, i] {
            const FormantTrack t =
                FormantTracker(trackerSettings(e.options, list[i])).track(searches[i].get(), e.voiced);
            Trial trial{frames, 0.0};
            setFormants(trial.frames, t, outputRate);
            if (list.size() > 1)
                trial.distance = judge.spectralDistance(trial.frames);
            return trial;
        }));
    double best = 1e300;
    std::vector<FrameValues> chosen;
    for (std::size_t i = 0; i < list.size(); ++i) {
        Trial trial = trials[i].get();
        if (trial.distance < best) {
            best = trial.distance;
            chosen = std::move(trial.frames);
            ceiling = list[i];
        }
        if (!e.report(0.2 + 0.4 * (i + 1) / list.size()))
            return false;
    }
    frames = std::move(chosen);
    return true;
}

// The open phase of the voicing source shapes the low end of its spectrum (a longer one gives
// a stronger first harmonic and fewer high ones): the setting whose synthesis comes closest to
// the recording's spectra is kept for the utterance. The settings are judged on threads of
// their own and compared in a fixed order.
void chooseOpenPhase(const LevelMatching& judge, std::vector<FrameValues>& frames, int outputRate)
{
    const double scale = outputRate / 11025.0;
    std::vector<int> values;
    std::vector<std::future<double>> distances;
    for (int oq : {30, 40, 50}) {
        const int value = std::min(65, static_cast<int>(std::lround(oq * scale)));
        values.push_back(value);
        distances.push_back(std::async(std::launch::async, [&judge, &frames, value] {
            std::vector<FrameValues> trial = frames;
            for (FrameValues& v : trial)
                v[Row::oq] = value;
            return judge.spectralDistance(trial);
        }));
    }
    double best = 1e300;
    int chosen = frames[0][Row::oq];
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double distance = distances[i].get();
        if (distance < best) {
            best = distance;
            chosen = values[i];
        }
    }
    for (FrameValues& v : frames)
        v[Row::oq] = chosen;
}

// Which branch carries the voice: the cascade, whose formant peaks stand at the heights its
// resonators give them, or the parallel branch, each peak's height matched to the recording.
// The parallel formants take 0.7 of the cascade's bandwidths: in the parallel sum each peak's
// flanks also hold its neighbours' skirts, which widens it. The branch whose synthesis comes
// closer to the recording's spectra is kept for the utterance. The cascade is judged on a
// thread of its own while the parallel branch is matched.
bool chooseVoicingBranch(const LevelMatching& judge, std::vector<FrameValues>& frames)
{
    constexpr double kParallelBandwidthScale = 0.7;
    constexpr int kShapePasses = 2;
    std::future<double> cascade =
        std::async(std::launch::async, [&judge, &frames] { return judge.spectralDistance(frames); });
    std::vector<FrameValues> parallel = frames;
    judge.matchParallelVoicing(parallel, 2, kParallelBandwidthScale);
    judge.refineParallelShape(parallel, kShapePasses);
    const double parallelDistance = judge.spectralDistance(parallel);
    if (!(parallelDistance < cascade.get()))
        return false;
    frames = std::move(parallel);
    return true;
}

// The frication's shape is refined on a thread of its own while the voicing branch is chosen:
// the one changes only unvoiced frames, the other only voiced ones (and renders the voice alone);
// the frication's rows are taken back afterwards, so the result does not depend on which
// finishes first.
bool chooseBranchAndFrication(const LevelMatching& levels, std::vector<FrameValues>& frames,
                              const std::vector<bool>& voiced)
{
    constexpr int kFricationPasses = 2;
    std::vector<FrameValues> frication = frames;
    std::future<void> refined = std::async(std::launch::async, [&levels, &frication] {
        levels.refineFricationShape(frication, kFricationPasses);
    });
    const bool parallel = chooseVoicingBranch(levels, frames);
    refined.get();
    for (std::size_t f = 0; f < voiced.size(); ++f)
        if (!voiced[f])
            for (int row : {Row::a2f, Row::a3f, Row::a4f, Row::a5f, Row::ab})
                frames[f][row] = frication[f][row];
    return parallel;
}

// f0 into every frame: unvoiced frames carry the neighbouring voiced value (av says they are
// unvoiced), so that the row stays within its limits and the voicing restarts smoothly.
void setPitch(std::vector<FrameValues>& frames, const std::vector<PitchFrame>& pitch)
{
    std::vector<double> f0(pitch.size(), 0.0);
    for (std::size_t f = 0; f < pitch.size(); ++f)
        f0[f] = pitch[f].f0;
    double last = 0.0;
    for (double v : f0)
        if (v > 0.0) {
            last = v;
            break;
        }
    for (std::size_t f = 0; f < f0.size(); ++f) {
        if (f0[f] > 0.0)
            last = f0[f];
        const double hz = last > 0.0 ? last : 100.0;
        frames[f][Row::f0] = static_cast<std::int32_t>(std::clamp(std::lround(hz * 10.0), 500L, 5000L));
        frames[f][Row::av] = f0[f] > 0.0 ? 60 : 0;
    }
}

CopySynthesisResult cancelledResult()
{
    CopySynthesisResult r;
    r.cancelled = true;
    return r;
}

CopySynthesisResult silentResult(CopySynthesisResult r)
{
    for (FrameValues& v : r.frames) {
        v[Row::av] = 0;
        v[Row::ah] = 0;
        v[Row::af] = 0;
        v[Row::apv] = 0;
        v[Row::ab] = 0;
    }
    r.report.silent = true;
    return r;
}

} // namespace

CopySynthesisResult copySynthesize(const float* samples, std::size_t count, double sampleRate,
                                   const CopySynthesisOptions& options, const CopySynthesisProgress& progress)
{
    checkArguments(count, sampleRate, options);
    CopySynthesisResult r;
    r.intervalMS = options.intervalMS;
    r.sampleRate = options.outputRate ? options.outputRate : (sampleRate >= 22050.0 ? 22050 : 11025);
    r.lengthMS = count * 1000.0 / sampleRate;
    const int columns = static_cast<int>(r.lengthMS / r.intervalMS);
    if (columns < 2)
        throw std::invalid_argument("the recording is shorter than two frames");
    r.frames.assign(columns, factoryFrame());
    r.report.frames = columns;
    r.report.highFormants = r.sampleRate == 22050;

    Estimation e{samples, count, sampleRate, options, progress, {}, {}};
    for (int c = 0; c + 1 < columns; ++c)
        e.centres.push_back((c * r.intervalMS + r.intervalMS / 2.0) / 1000.0);
    double peak = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        peak = std::max(peak, static_cast<double>(std::fabs(samples[i])));
    if (!(peak > kSilencePeak))
        return silentResult(std::move(r));
    if (!e.report(0.0))
        return cancelledResult();

    const std::vector<double> ceilingList = ceilings(options, sampleRate);
    PathSearches searches = startPathSearches(e, ceilingList);
    setPitch(r.frames, estimatePitch(e));
    if (!e.report(0.2))
        return cancelledResult();
    const LevelMatching levels({samples, count, sampleRate, e.centres, e.voiced}, r.sampleRate, r.intervalMS);
    if (!estimateFormants(e, levels, ceilingList, searches, r.frames, r.sampleRate, r.report.maxFormantHz))
        return cancelledResult();
    r.report.ceilingAutomatic = options.maxFormantHz <= 0.0;
    chooseOpenPhase(levels, r.frames, r.sampleRate);
    levels.matchVoicing(r.frames, 3);
    if (!e.report(0.75))
        return cancelledResult();
    levels.matchVoicedBalance(r.frames);
    levels.matchFrication(r.frames, 2);
    levels.matchHighBand(r.frames);
    r.report.parallelVoicing = chooseBranchAndFrication(levels, r.frames, e.voiced);
    levels.matchTotal(r.frames, 2);
    levels.smoothVoicing(r.frames);
    if (!e.report(0.9))
        return cancelledResult();
    r.report.peakLevel = levels.limitPeak(r.frames);
    r.frames.back() = r.frames[columns - 2];
    r.report.gain = r.frames[0][Row::gain];
    std::size_t voicedFrames = std::count(e.voiced.begin(), e.voiced.end(), true);
    r.report.voicedShare = e.voiced.empty() ? 0.0 : static_cast<double>(voicedFrames) / e.voiced.size();
    e.report(1.0);
    return r;
}

void applyCopySynthesis(const CopySynthesisResult& result, MyDocument& document)
{
    Channels& channel = *document.getChannel(0);
    channel.m_dLengthMS = result.lengthMS;
    channel.m_nUpdateIntervalMS = result.intervalMS;
    channel.m_nColumnNum = static_cast<std::int32_t>(result.frames.size());
    for (int row : kHighFormantRows)
        channel.m_Parameters[row].bSelected = result.sampleRate == 22050 ? 1 : 0;
    channel.m_pAnchorPosition.clear();
    channel.m_AnchorPositionDict.clear();
    channel.m_nNumberofAnchors = 0;
    document.SetUpDataGridMemory();
    for (std::size_t c = 0; c < result.frames.size(); ++c)
        for (int row = 0; row < kParameterCount; ++row)
            channel.m_snppDataImage_Col_Row[c][row] = static_cast<std::int16_t>(result.frames[c][row]);
    const std::uint8_t readFile = document.m_bReadFile;
    document.m_bReadFile = 1; // the table data takes the values of the grid just made
    document.buildDataTableDictionary();
    document.m_bReadFile = readFile;
}

std::unique_ptr<MyDocument> copySynthesisDocument(const CopySynthesisResult& result)
{
    auto document = std::make_unique<MyDocument>();
    applyCopySynthesis(result, *document);
    return document;
}

std::string copySynthesisSummary(const CopySynthesisReport& report)
{
    if (report.silent)
        return "the recording is silent: the document is silent";
    char line[240];
    std::snprintf(line, sizeof line,
                  "%d frames, %.0f%% voiced, formant ceiling %.0f Hz%s, voicing through the %s, gain %d dB%s",
                  report.frames, report.voicedShare * 100.0, report.maxFormantHz,
                  report.ceilingAutomatic ? " (automatic)" : "",
                  report.parallelVoicing ? "parallel branch" : "cascade", report.gain,
                  report.highFormants ? ", f6-f8 in use (22050 Hz)" : "");
    return line;
}

#pragma once

#include <ferrin_core/channel.h>
#include <ferrin_core/channel_config_manager.h>

#include <set>
#include <string>
#include <vector>

namespace ferrin_test {

using ferrin::Tick;

/// A stream that remembers what it was asked and what is loaded.
class FakeStream : public ferrin::IfLoadableStream
{
public:
    bool reserve(const ferrin::DataSource&, Tick first, Tick last, const std::string& owner,
                 std::uint32_t) override
    {
        calls.push_back("reserve " + std::to_string(first) + ".." + std::to_string(last) + " " + owner);
        return true;
    }
    bool release(const ferrin::DataSource&, Tick first, Tick last, const std::string& owner,
                 std::uint32_t) override
    {
        calls.push_back("release " + std::to_string(first) + ".." + std::to_string(last) + " " + owner);
        return true;
    }
    bool load(const ferrin::DataSource&, Tick first, Tick last) override
    {
        calls.push_back("load " + std::to_string(first) + ".." + std::to_string(last));
        for (Tick t = first; t <= last; ++t)
            loaded.insert(t);
        return true;
    }

    std::vector<std::string> calls;
    std::set<Tick> loaded;
};

/// Reduced entries i hold (i, i + 1, i + 0.5, i + 0.25) once loaded.
class FakeReducedStream : public ferrin::ReducedStream
{
public:
    bool reserve(const ferrin::DataSource& s, Tick f, Tick l, const std::string& o, std::uint32_t x) override
    {
        return recorder.reserve(s, f, l, o, x);
    }
    bool release(const ferrin::DataSource& s, Tick f, Tick l, const std::string& o, std::uint32_t x) override
    {
        return recorder.release(s, f, l, o, x);
    }
    bool load(const ferrin::DataSource& s, Tick f, Tick l) override { return recorder.load(s, f, l); }

    std::uint32_t entrySize() const override { return ferrin::REDUCED_ENTRY_SIZE; }
    std::uint64_t entryCount() const override { return 1000; }
    bool readEntry(std::uint64_t index, std::uint8_t* out) const override
    {
        if (!recorder.loaded.count(index))
            return false;
        const double i = static_cast<double>(index);
        ferrin::encodeReducedEntry(ferrin::ReducedValue{i, i + 1, i + 0.5, i + 0.25}, out);
        return true;
    }

    FakeStream recorder;
};

class FakeSource : public ferrin::DataSource
{
public:
    std::uint64_t reductionFactor(std::uint32_t level, std::uint64_t) const override
    {
        return level == 1 ? factor_kind0 : 0;
    }
    std::uint64_t tickReductionFactor(std::uint32_t level, std::uint64_t) const override
    {
        return level == 1 ? factor_kind1 : 0;
    }
    std::shared_ptr<ferrin::ReducedStream> getReducedStream(std::uint32_t, std::uint32_t level) const override
    {
        return level == 1 ? reduced : nullptr;
    }
    std::uint64_t streamId() const override { return 5; }
    std::shared_ptr<ferrin::IfLoadableStream> getSampleStream() const override { return samples; }

    std::uint64_t factor_kind0 = 10;
    std::uint64_t factor_kind1 = 10;
    std::shared_ptr<FakeStream> samples = std::make_shared<FakeStream>();
    std::shared_ptr<FakeReducedStream> reduced = std::make_shared<FakeReducedStream>();
};

/// Answers getSampleAtTime only for ticks its source has loaded (or all, when told).
class FakeChannel : public ferrin::Channel
{
public:
    FakeChannel(ferrin::ChannelSetup setup, std::shared_ptr<FakeSource> source)
        : Channel(std::move(setup)), m_source(std::move(source))
    {}

    std::shared_ptr<ferrin::DataSource> getDataSource() const override { return m_source; }
    daq::SamplePtr getSampleAtTime(double time) const override
    {
        ++sample_reads;
        const Tick tick = static_cast<Tick>(time * 10.0 + 1e-9);
        if (!always_there && !m_source->samples->loaded.count(tick))
            return nullptr;
        return daq::makeSample(tick, static_cast<double>(tick));
    }

    std::shared_ptr<FakeSource> m_source;
    bool always_there = false;
    mutable int sample_reads = 0;
};

/// Writes down every call it gets.
class RecordingConfigManager : public ferrin_config::IfChannelConfigManager
{
public:
    bool applyConfigRequests(const ferrin_config::ConfigRequests& requests, std::uint32_t timeout_ms,
                             bool notify, bool validate_only, bool force) override
    {
        batches.push_back(requests);
        arguments.push_back({timeout_ms, notify, validate_only, force});
        return answer;
    }
    bool applyChannelAction(const std::string& key, const std::vector<channel_config::ChannelID>& channels,
                            double time) override
    {
        actions.push_back({key, channels, time});
        return true;
    }

    struct Arguments
    {
        std::uint32_t timeout_ms;
        bool notify;
        bool validate_only;
        bool force;
    };
    struct Action
    {
        std::string key;
        std::vector<channel_config::ChannelID> channels;
        double time;
    };
    std::vector<ferrin_config::ConfigRequests> batches;
    std::vector<Arguments> arguments;
    std::vector<Action> actions;
    bool answer = true;
};

} // namespace ferrin_test

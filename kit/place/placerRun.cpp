// SPDX-License-Identifier: BSD-3-Clause
#include "kit/place/placerRun.h"

#include <algorithm>
#include <iostream>
#include <streambuf>

#include "app/driver.h"
#include "qlib/report.h"

namespace kit::place {

namespace {

/// Passes everything on to standard output and keeps a copy.
class Tee : public std::streambuf {
public:
    const std::string& text() const { return m_text; }

private:
    int overflow(int c) override
    {
        if (c != traits_type::eof()) {
            m_text.push_back(static_cast<char>(c));
            std::cout.put(static_cast<char>(c));
        }
        return c == traits_type::eof() ? 0 : c;
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        m_text.append(text, static_cast<size_t>(size));
        std::cout.write(text, size);
        return size;
    }

    int sync() override { return std::cout.flush() ? 0 : -1; }

    std::string m_text;
};

/// Thrown in place of the end of the process.
struct RunEnded {};

/// Takes over the report and the end of the run while it lives.
class Capture {
public:
    Capture() : m_stream(&m_tee), m_before(vireloce::setEndHandler([] { throw RunEnded{}; }))
    {
        vireloce::setReport(&m_stream);
    }
    ~Capture()
    {
        m_stream.flush();
        vireloce::setReport(nullptr);
        vireloce::setEndHandler(m_before);
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    const std::string& text() const { return m_tee.text(); }

private:
    Tee m_tee;
    std::ostream m_stream;
    vireloce::EndHandler m_before;
};

} // namespace

PlacerRun runPlacer(std::vector<std::string> arguments, const Onlookers& onlookers)
{
    PlacerRun run;
    vireloce::RunHooks hooks;
    hooks.afterSetUp = [&](Design& design) {
        run.readable = true;
        onlookers.afterSetUp(design);
    };
    hooks.onProgress = [&](const vireloce::Progress& progress) {
        run.passes.resize(static_cast<size_t>(progress.pass));
        run.passes.back() = {.overfull = progress.overfull, .movedOut = progress.movedOut};
        onlookers.onProgress(progress);
    };
    hooks.afterEvaluation = [&](Design& design) {
        run.complete = true;
        onlookers.afterEvaluation(design);
    };
    std::vector<char*> argv(arguments.size());
    std::transform(arguments.begin(), arguments.end(), argv.begin(),
                   [](std::string& argument) { return argument.data(); });
    const Capture capture;
    try {
        vireloce::runPlacer(static_cast<int>(argv.size()), argv.data(), hooks);
    } catch (const RunEnded&) { // why is in the report
    }
    run.report = capture.text();
    return run;
}

} // namespace kit::place

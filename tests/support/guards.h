// SPDX-License-Identifier: BSD-3-Clause
// What a test must put back when it is done: parameters, the report's target, the end of a run, files.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/parameterScope.h"
#include "qlib/report.h"

namespace test {

/// Starts with every parameter at its built-in value and restores what was there before.
class ParameterGuard {
public:
    ParameterGuard() { vireloce::setParameters({}); }

private:
    vireloce::ParameterScope m_before;
};

/// Collects the report while it lives.
class ReportCapture {
public:
    /// The report so far.
    std::string text() const { return m_text.str(); }

private:
    std::ostringstream m_text;
    vireloce::ReportScope m_scope{&m_text};
};

/// The report of an action that must end the run; a failure if it does not.
template <class Action>
std::string reportOfEndedRun(Action action)
{
    const ReportCapture capture;
    bool ended = false;
    try {
        action();
    } catch (const vireloce::RunError&) {
        ended = true;
    }
    EXPECT_TRUE(ended) << "the run went on";
    return capture.text();
}

/// The report of an action that must not end the run.
template <class Action>
std::string reportOf(Action action)
{
    const ReportCapture capture;
    try {
        action();
    } catch (const vireloce::RunError&) {
        ADD_FAILURE() << "the run ended: " << capture.text();
    }
    return capture.text();
}

/// A folder that is removed with all its files.
class TempDir {
public:
    TempDir()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "vireloce-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
    }
    ~TempDir() { std::filesystem::remove_all(m_path); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Path of a file in the folder.
    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file, byte for byte.
    ///
    /// @return its path
    std::string write(const std::string& name, const std::string& text) const
    {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << text;
        return path(name);
    }

private:
    std::filesystem::path m_path;
};

} // namespace test

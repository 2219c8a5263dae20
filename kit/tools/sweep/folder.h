// SPDX-License-Identifier: BSD-3-Clause
// The files of a study's folder.
#pragma once

#include <string>

namespace kit::sweep {

/// Where things are in DIR. Everything comes into being under another name in `work` first.
class Folder {
public:
    explicit Folder(std::string dir) : m_dir(std::move(dir)) {}

    const std::string& dir() const { return m_dir; }

    /// Results, one file a run.
    std::string results() const { return m_dir + "/results"; }
    std::string result(const std::string& id) const { return results() + "/" + id + ".json"; }

    /// Claims: who is at work on what.
    std::string claims() const { return m_dir + "/claims"; }

    /// Folders of runs that are going on.
    std::string work() const { return m_dir + "/work"; }

    /// Placements that are kept, a folder a run.
    std::string placements() const { return m_dir + "/placements"; }
    std::string placement(const std::string& id) const { return placements() + "/" + id; }

private:
    std::string m_dir;
};

} // namespace kit::sweep

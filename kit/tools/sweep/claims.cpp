// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/claims.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/hash.h"
#include "kit/base/text/json.h"

namespace kit::sweep {

namespace fs = std::filesystem;

namespace {

/// What is in a file, nothing if it cannot be read.
std::string textOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

std::string hostName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

/// When a process was started, -1 if there is none of this id.
int64_t startOf(int64_t process)
{
    constexpr int FIELDS_BEFORE = 19; // behind the name, which may hold anything
    const std::string stat = textOf("/proc/" + std::to_string(process) + "/stat");
    const size_t nameEnd = stat.rfind(')');
    if (nameEnd == std::string::npos) {
        return -1;
    }
    std::istringstream fields(stat.substr(nameEnd + 1));
    std::string word;
    for (int i = 0; i < FIELDS_BEFORE; ++i) {
        fields >> word;
        if (i == 0 && (word == "Z" || word == "X")) { // it has ended, and nobody has looked yet
            return -1;
        }
    }
    int64_t start = -1;
    fields >> start;
    return start;
}

const std::string& placeHere()
{
    static const std::string s_place = Owner::self().place;
    return s_place;
}

/// The names in a folder, by name.
std::vector<std::string> namesIn(const std::string& path)
{
    std::vector<std::string> names;
    for (const std::string& file : filesIn(path)) {
        names.push_back(fs::path(file).filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The claim that a file is by its name, if it is one.
std::optional<Claim> claimOf(const std::string& name)
{
    const size_t dot = name.find('.');
    const bool named = dot != std::string::npos && dot > 0 && name.size() > dot + 1 &&
                       name.size() <= dot + 9 &&
                       name.find_first_not_of("0123456789", dot + 1) == std::string::npos;
    return named ? std::optional(Claim{name.substr(0, dot), std::stoi(name.substr(dot + 1))}) : std::nullopt;
}

/// When a file was touched last, by the clock of its file system; nothing if it is gone.
std::optional<double> touchedAt(const std::string& path)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return static_cast<double>(info.st_mtim.tv_sec) + static_cast<double>(info.st_mtim.tv_nsec) * 1e-9;
}

} // namespace

Owner Owner::self()
{
    const std::string host = hostName();
    std::string boot;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> boot;
    std::error_code error; // containers have a space of process ids of their own
    const std::string space = fs::read_symlink("/proc/self/ns/pid", error).string();
    const int64_t process = getpid();
    return {host, host + " " + boot + " " + space, process, startOf(process)};
}

std::string Owner::name() const
{
    std::string safe = host;
    std::replace_if(
        safe.begin(), safe.end(), [](unsigned char c) { return std::isalnum(c) == 0 && c != '-'; }, '_');
    return safe + "." + std::to_string(process) + "." + std::to_string(start) + "." + hashOf(place);
}

bool Owner::isGone(const std::string& name)
{
    const size_t hash = name.rfind('.');
    const size_t start = hash == std::string::npos || hash == 0 ? hash : name.rfind('.', hash - 1);
    const size_t process = start == std::string::npos || start == 0 ? start : name.rfind('.', start - 1);
    if (process == std::string::npos || name.substr(hash + 1) != hashOf(placeHere())) {
        return false;
    }
    const int64_t id = std::atoll(name.c_str() + process + 1);
    return startOf(id) != std::atoll(name.c_str() + start + 1);
}

std::string Owner::text() const
{
    return Json{{"host", host}, {"place", place}, {"process", process}, {"start", start}}.dump() + "\n";
}

std::optional<Owner> Owner::parse(const std::string& text)
{
    try {
        const Json json = Json::parse(text);
        return Owner{json.at("host").asString(), json.at("place").asString(), json.at("process").asInteger(),
                     json.at("start").asInteger()};
    } catch (const Fault&) {
        return std::nullopt;
    }
}

std::optional<bool> Owner::isAlive() const
{
    if (place != placeHere()) {
        return std::nullopt;
    }
    return startOf(process) == start;
}

Claims::Claims(const Folder& folder) : m_folder(folder), m_self(Owner::self())
{
    for (const std::string& path : {folder.results(), folder.claims(), folder.work()}) {
        makeFolder(path);
    }
    writeFile(ownerPath(), m_self.text());
}

Claims::~Claims()
{
    unlink(ownerPath().c_str());
}

std::string Claims::pathOf(const Claim& claim) const
{
    return m_folder.claims() + "/" + claim.id + "." + std::to_string(claim.generation);
}

std::string Claims::ownerPath() const
{
    return m_folder.claims() + "/." + m_self.name();
}

std::optional<Claim> Claims::highest(const std::string& id) const
{
    std::optional<Claim> found;
    for (const std::string& name : namesIn(m_folder.claims())) {
        const std::optional<Claim> claim = claimOf(name);
        if (claim.has_value() && claim->id == id && (!found || found->generation < claim->generation)) {
            found = claim;
        }
    }
    return found;
}

bool Claims::link(const Claim& claim)
{
    if (::link(ownerPath().c_str(), pathOf(claim).c_str()) == 0) {
        return true;
    }
    if (errno != EEXIST) {
        throw Fault("cannot claim a run by a hard link " + pathOf(claim) + ": " + std::strerror(errno));
    }
    return false;
}

bool Claims::othersHave(const Claim& claim)
{
    for (const std::string& name : namesIn(m_folder.claims())) {
        const std::optional<Claim> other = claimOf(name);
        if (other.has_value() && other->id == claim.id && other->generation != claim.generation &&
            stateOf(m_folder.claims() + "/" + name) == State::ALIVE) {
            return true;
        }
    }
    return false;
}

std::optional<Claim> Claims::take(const std::string& id)
{
    Claim claim{id, 0};
    if (!link(claim)) {
        const std::optional<Claim> last = highest(id);
        if (last.has_value()) {
            if (stateOf(pathOf(*last)) == State::ALIVE) {
                return std::nullopt;
            }
            claim.generation = last->generation + 1;
        }
        if (!link(claim)) { // another was faster
            return std::nullopt;
        }
    }
    // Claims with a result are cleaned away from below, so that a lower generation than a living one may be
    // free for a moment.
    if (othersHave(claim)) {
        release(claim);
        return std::nullopt;
    }
    return claim;
}

bool Claims::holds(const Claim& claim)
{
    return Owner::parse(textOf(pathOf(claim))) == m_self && !othersHave(claim);
}

void Claims::release(const Claim& claim) noexcept
{
    unlink(pathOf(claim).c_str());
}

void Claims::giveSign() noexcept
{
    utimensat(AT_FDCWD, ownerPath().c_str(), nullptr, 0); // the time of the file's own system
}

bool Claims::isOld(const std::string& path)
{
    giveSign();
    const std::optional<double> now = touchedAt(ownerPath());
    const std::optional<double> then = touchedAt(path);
    return now.has_value() && then.has_value() && *now - *then > STALE_SECONDS;
}

Claims::State Claims::stateOf(const std::string& path)
{
    const std::string text = textOf(path);
    const std::optional<Owner> owner = Owner::parse(text);
    if (!owner.has_value()) {
        return !fs::exists(path) ? State::GONE : isOld(path) ? State::STALE : State::ALIVE;
    }
    const std::optional<bool> alive = owner->isAlive();
    return alive.value_or(!isOld(path)) ? State::ALIVE : State::STALE;
}

std::string Claims::abandoned()
{
    for (const std::string& name : namesIn(m_folder.claims())) {
        const std::optional<Claim> claim = claimOf(name);
        if (claim.has_value() && !fs::exists(m_folder.result(claim->id)) &&
            stateOf(m_folder.claims() + "/" + name) == State::STALE) {
            return claim->id;
        }
    }
    return "";
}

void Claims::cleanUp()
{
    std::error_code error; // what another process has removed is as well
    for (const std::string& name : namesIn(m_folder.work())) {
        const size_t dot = name.find('.');
        const std::string owner =
            m_folder.claims() + "/." + name.substr(dot == std::string::npos ? 0 : dot + 1);
        if (stateOf(owner) != State::ALIVE) {
            fs::remove_all(m_folder.work() + "/" + name, error);
        }
    }
    for (const std::string& name : namesIn(m_folder.claims())) {
        const std::string path = m_folder.claims() + "/" + name;
        const std::optional<Claim> claim = claimOf(name);
        const bool done = claim.has_value() && fs::exists(m_folder.result(claim->id));
        const std::string whole = nameOfPart(name); // the file of an owner who could not finish it
        const bool half = whole.starts_with('.') && Owner::isGone(whole.substr(1));
        if (half || ((done || name[0] == '.') && stateOf(path) == State::STALE)) {
            unlink(path.c_str());
        }
    }
}

} // namespace kit::sweep

// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/owner.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "kit/base/fault.h"
#include "kit/base/hash.h"
#include "kit/base/text/json.h"

namespace kit::sweep {

namespace {

std::string hostName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

std::string bootId()
{
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string id;
    file >> id;
    return id;
}

/// The name of the space that this process's id belongs to: containers have their own.
std::string processSpace()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/ns/pid", error).string();
}

/// When a process was started, -1 if there is none of this id.
int64_t startOf(int64_t process)
{
    constexpr int FIELDS_BEFORE = 19; // behind the name, which may hold anything
    std::ostringstream text;
    text << std::ifstream("/proc/" + std::to_string(process) + "/stat").rdbuf();
    const std::string stat = text.str();
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

std::string hashOf(const std::string& text)
{
    Hash hash;
    hash.add(text);
    return hash.text();
}

} // namespace

Owner Owner::self()
{
    const std::string host = hostName();
    const int64_t process = getpid();
    return {host, host + " " + bootId() + " " + processSpace(), process, startOf(process)};
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

} // namespace kit::sweep

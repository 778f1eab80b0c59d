#pragma once
// A project on disk for the project-file tests: a control stand-in (TestHost), a
// recording sink, and a file collection wired to it.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "common/constants.h"
#include "model/all_files.h"
#include "persist/project_host.h"
#include "persist/save_into_file.h"
#include "support/recording_sink.h"

namespace kestrel::test {

struct TestHost : ProjectHost {
    std::u16string fileName;
    int32_t language = LANGUAGE_C;
    int32_t id = -1;
    bool backup = false;

    std::u16string FileName() override { return fileName; }
    void FileName(const std::u16string& name) override { fileName = name; }
    int32_t Language() override { return language; }
    void Language(int32_t value) override { language = value; }
    int32_t ID() override { return id; }
    void ID(int32_t value) override { id = value; }
    bool CreateBackup() override { return backup; }
};

struct Project {
    std::shared_ptr<RecordingSink> sink = std::make_shared<RecordingSink>();
    std::shared_ptr<clsAllFiles> files = std::make_shared<clsAllFiles>();
    TestHost host;

    Project() { files->SetSinkObject__(sink); }

    bool Save() { return clsSaveIntoFile().Save(host, *files); }
    bool Load(const std::string& path) { return clsSaveIntoFile().Load(FromUtf8(path), host, *files); }
};

// A folder of its own under the system's temporary folder, removed afterwards.
struct TempDir {
    std::filesystem::path path;
    explicit TempDir(const std::string& name)
        : path(std::filesystem::temp_directory_path() / (name + "-" + std::to_string(::getpid()))) {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    std::string operator/(const std::string& name) const { return (path / name).string(); }
    // Files directly inside: a save must leave no temporary behind.
    int RegularFiles() const {
        int n = 0;
        for (auto& e : std::filesystem::directory_iterator(path)) n += e.is_regular_file();
        return n;
    }
};

inline std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

// Record helpers for hand-made project files.
inline std::string N(int32_t v) {
    uint32_t u = static_cast<uint32_t>(v);
    return {char(u & 0xFF), char(u >> 8 & 0xFF), char(u >> 16 & 0xFF), char(u >> 24 & 0xFF)};
}
inline std::string S(const std::string& text) { return N(static_cast<int32_t>(text.size())) + text; }
// An item record; version 11 files carry the parameter text.
inline std::string ItemRecord(const std::string& name, int32_t line, const std::string& params = "",
                              bool withParams = true) {
    return S(name) + N(line) + N(PUBLIC_SCOPE) + N(0) + S("") + (withParams ? S(params) : "");
}

}  // namespace kestrel::test

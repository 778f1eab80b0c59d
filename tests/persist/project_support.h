#pragma once
// A project on disk for the project-file tests: a control stand-in (TestHost), a
// recording sink, and a file collection wired to it.
#include <string>

#include "common/constants.h"
#include "model/all_files.h"
#include "persist/project_host.h"
#include "persist/save_into_file.h"
#include "support/recording_sink.h"
#include "support/scratch.h"

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

#pragma once
// Files for tests: a private scratch folder removed afterwards, whole-file reads, the
// checked-in golden files, and the real kestrel program run as a user would.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace kestrel::test {

inline std::string ReadFileBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteFileBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

inline std::string Golden(const std::string& name) {
    return ReadFileBytes(std::filesystem::path(KESTREL_SOURCE_DIR) / "tests/golden" / name);
}

// A fresh folder under the temporary directory, removed with everything in it.
class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kestrel-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) ADD_FAILURE() << "cannot make a scratch folder";
        path_ = pattern;
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    // The full name of `name` inside, as the project code takes file names.
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

// Runs kestrel with `args` (already quoted for the shell) in the folder `cwd`.
inline Outcome RunKestrel(const std::filesystem::path& cwd, const std::string& args) {
    ScratchDir streams;
    const std::filesystem::path out = streams.path() / "stdout", err = streams.path() / "stderr";
    const std::string command = "cd '" + cwd.string() + "' && '" KESTREL_BINARY_DIR "/tools/kestrel' " + args + " >'" +
                                out.string() + "' 2>'" + err.string() + "' </dev/null";
    const int raw = std::system(command.c_str());
    return Outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFileBytes(out), ReadFileBytes(err)};
}

}  // namespace kestrel::test

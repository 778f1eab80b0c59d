#pragma once
// The real kestrel program as a process of its own, for tests that run writers side by
// side, kill them, or run them on a system that has no unnamed files (O_TMPFILE).
#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kestrel::test {

// In this process from now on, opening an unnamed file fails as it does on a file
// system without them (EOPNOTSUPP). A seccomp filter cannot be undone, so only a child
// about to become another program calls it.
inline bool RefuseUnnamedFiles() {
    constexpr unsigned unnamedFlag = O_TMPFILE & ~O_DIRECTORY;
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_openat, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),  // the flags
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, unnamedFlag, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program{static_cast<unsigned short>(std::size(filter)), filter};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

struct SpawnOptions {
    bool withoutUnnamedFiles = false;
};

// Starts kestrel with `args` in the folder `cwd`, its output thrown away; answers its pid.
inline pid_t SpawnKestrel(const std::filesystem::path& cwd, const std::vector<std::string>& args,
                          SpawnOptions options = {}) {
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    const int quiet = ::open("/dev/null", O_RDWR);
    ::dup2(quiet, 0);
    ::dup2(quiet, 1);
    ::dup2(quiet, 2);
    if (::chdir(cwd.c_str()) != 0 || (options.withoutUnnamedFiles && !RefuseUnnamedFiles())) ::_exit(126);
    std::vector<char*> argv{const_cast<char*>(KESTREL_BINARY_DIR "/tools/kestrel")};
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
}

// The exit status of a process started by SpawnKestrel, or -signal when a signal ended it.
inline int WaitFor(pid_t pid) {
    int raw = 0;
    while (::waitpid(pid, &raw, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : WIFSIGNALED(raw) ? -WTERMSIG(raw) : -1000;
}

}  // namespace kestrel::test

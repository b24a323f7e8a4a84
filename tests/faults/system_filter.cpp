// The kernel hands the chosen calls to a signal handler, which lets them pass or answers them itself. So they
// fail below the C library too, where no function can be put in between.

#include "faults/system_filter.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <vector>

// A call from this one place isn't trapped.
extern "C" long tarnwick_pass_call(long number, long a, long b, long c, long d, long e, long f);
extern "C" const char tarnwick_behind_call;
asm(R"(
    .text
    .globl tarnwick_pass_call
    .hidden tarnwick_pass_call
    .type tarnwick_pass_call, @function
tarnwick_pass_call:
    .cfi_startproc
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
    .globl tarnwick_behind_call
    .hidden tarnwick_behind_call
tarnwick_behind_call:
    ret
    .cfi_endproc
    .size tarnwick_pass_call, .-tarnwick_pass_call
)");

namespace tarnwick::faults {
namespace {

struct Kind {
    Fault fault;
    int error;
    std::vector<int> calls;
};

const std::vector<Kind>& Kinds() {
    static const std::vector<Kind> kinds{
        {Fault::kOpen, EMFILE, {SYS_open, SYS_openat}},
        {Fault::kRead, EIO, {SYS_read, SYS_pread64, SYS_readv}},
        {Fault::kShortRead, EIO, {SYS_read, SYS_pread64}},
        {Fault::kStatus, EIO, {SYS_stat, SYS_fstat, SYS_lstat, SYS_newfstatat, SYS_statx}},
        {Fault::kSeek, EIO, {SYS_lseek}},
        {Fault::kMap, ENOMEM, {SYS_mmap, SYS_mremap, SYS_brk}},
        {Fault::kWrite, ENOSPC, {SYS_write, SYS_pwrite64, SYS_writev}},
        {Fault::kShortWrite, ENOSPC, {SYS_write, SYS_pwrite64}},
        {Fault::kClose, EIO, {SYS_close}},
        {Fault::kRename, EIO, {SYS_rename, SYS_renameat, SYS_renameat2}},
        {Fault::kMakeFolder, EACCES, {SYS_mkdir, SYS_mkdirat}},
    };
    return kinds;
}

Fault fault = Fault::kNone;
int error = 0;
bool (*isTurn)() = nullptr;

// How the call ends that should fail.
long Fail(long number, const greg_t* registers) {
    const long a = registers[REG_RDI];
    const long b = registers[REG_RSI];
    const long c = registers[REG_RDX];
    const long d = registers[REG_R10];
    if (fault == Fault::kShortRead || fault == Fault::kShortWrite) {
        return tarnwick_pass_call(number, a, b, c > 1 ? c / 2 : c, d, 0, 0);
    }
    if (fault == Fault::kClose) { tarnwick_pass_call(number, a, 0, 0, 0, 0, 0); }
    if (number == SYS_brk) { return tarnwick_pass_call(number, 0, 0, 0, 0, 0, 0); } // the old one: no growth
    return -error;
}

void OnCall(int, siginfo_t* info, void* context) {
    greg_t* const registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const long number = info->si_syscall;
    const bool writes = number == SYS_write || number == SYS_pwrite64 || number == SYS_writev;
    // What the program says of a failure has to come through.
    const bool isMessage = writes && registers[REG_RDI] == STDERR_FILENO;
    const int savedError = errno;
    registers[REG_RAX] =
        !isMessage && isTurn()
            ? Fail(number, registers)
            : tarnwick_pass_call(number, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                 registers[REG_R10], registers[REG_R8], registers[REG_R9]);
    errno = savedError;
}

sock_filter Load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<__u32>(offset));
}

sock_filter Unless(std::uintptr_t value, std::size_t skip) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(value), 0, static_cast<__u8>(skip));
}

sock_filter Return(unsigned value) {
    return BPF_STMT(BPF_RET | BPF_K, value);
}

} // namespace

void TrapSystemCalls(Fault which, bool (*turn)()) {
    fault = which;
    isTurn = turn;
    struct sigaction action {};
    action.sa_sigaction = OnCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigaction(SIGSYS, &action, nullptr);
    const auto passed = reinterpret_cast<std::uintptr_t>(&tarnwick_behind_call);
    std::vector<sock_filter> filter{
        Load(offsetof(seccomp_data, instruction_pointer)),
        Unless(passed & 0xffffffff, 3),
        Load(offsetof(seccomp_data, instruction_pointer) + 4),
        Unless(passed >> 32, 1),
        Return(SECCOMP_RET_ALLOW),
        Load(offsetof(seccomp_data, nr)),
    };
    for (const Kind& kind : Kinds()) {
        if (kind.fault != which) { continue; }
        error = kind.error;
        for (const int call : kind.calls) {
            filter.push_back(Unless(static_cast<unsigned>(call), 1));
            filter.push_back(Return(SECCOMP_RET_TRAP));
        }
    }
    filter.push_back(Return(SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        std::abort();
    }
}

} // namespace tarnwick::faults

// The kernel hands all calls of the program to a signal handler, which lets them pass or answers them itself.
// So they fail below the C library too, where no function can be put in between. The programs that it starts
// are spared.

#include "faults/system_filter.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>

// Calls from within these two aren't handed over: that of a call which may pass, and the handler's way back.
extern "C" long tarnwick_pass_call(long number, long a, long b, long c, long d, long e, long f);
extern "C" void tarnwick_end_of_handler();
extern "C" const char tarnwick_behind_calls;
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
    ret
    .cfi_endproc
    .size tarnwick_pass_call, .-tarnwick_pass_call
    nop # who walks the stack looks a byte before the way back, and knows that by its very bytes
    .globl tarnwick_end_of_handler
    .hidden tarnwick_end_of_handler
    .type tarnwick_end_of_handler, @function
tarnwick_end_of_handler:
    mov $15, %rax
    syscall
    .globl tarnwick_behind_calls
    .hidden tarnwick_behind_calls
tarnwick_behind_calls:
    nop
    .size tarnwick_end_of_handler, .-tarnwick_end_of_handler
)");

namespace tarnwick::faults {
namespace {

struct Kind {
    Fault fault;
    int error;
    std::initializer_list<int> calls;
};

// Nothing that is gone before the program's last call.
constexpr Kind kKinds[] = {
    {Fault::kOpen, EMFILE, {SYS_open, SYS_openat, SYS_pipe, SYS_pipe2, SYS_socketpair}},
    {Fault::kRead, EIO, {SYS_read, SYS_pread64, SYS_readv, SYS_recvfrom}},
    {Fault::kShortRead, EIO, {SYS_read, SYS_pread64}},
    {Fault::kStatus, EIO, {SYS_stat, SYS_fstat, SYS_lstat, SYS_newfstatat, SYS_statx}},
    {Fault::kSeek, EIO, {SYS_lseek}},
    {Fault::kMap, ENOMEM, {SYS_mmap, SYS_mremap, SYS_brk}},
    {Fault::kWrite, ENOSPC, {SYS_write, SYS_pwrite64, SYS_writev, SYS_sendto}},
    {Fault::kShortWrite, ENOSPC, {SYS_write, SYS_pwrite64}},
    {Fault::kClose, EIO, {SYS_close}},
    {Fault::kRename, EIO, {SYS_rename, SYS_renameat, SYS_renameat2}},
    {Fault::kMakeFolder, EACCES, {SYS_mkdir, SYS_mkdirat}},
};

constexpr unsigned long kOwnRestorer = 0x04000000; // SA_RESTORER of the kernel
constexpr std::size_t kSignalBytes = 8;

Fault fault = Fault::kNone;
const Kind* failing = nullptr;
bool (*isTurn)() = nullptr;
thread_local char isPassed = SYSCALL_DISPATCH_FILTER_ALLOW;

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
    return -failing->error;
}

bool MayFail(long number, const greg_t* registers) {
    const auto& calls = failing->calls;
    if (std::find(calls.begin(), calls.end(), number) == calls.end()) { return false; }
    const bool writes = number == SYS_write || number == SYS_pwrite64 || number == SYS_writev;
    // What the program says of a failure has to come through.
    return !(writes && registers[REG_RDI] == STDERR_FILENO);
}

void OnCall(int, siginfo_t* info, void* context) {
    isPassed = SYSCALL_DISPATCH_FILTER_ALLOW;
    auto* const before = static_cast<ucontext_t*>(context);
    greg_t* const registers = before->uc_mcontext.gregs;
    const long number = info->si_syscall;
    const int savedError = errno;
    registers[REG_RAX] =
        MayFail(number, registers) && isTurn()
            ? Fail(number, registers)
            : tarnwick_pass_call(number, registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                 registers[REG_R10], registers[REG_R8], registers[REG_R9]);
    if (number == SYS_rt_sigprocmask) { // the handler's end would undo it
        syscall(SYS_rt_sigprocmask, SIG_SETMASK, nullptr, &before->uc_sigmask, kSignalBytes);
    }
    errno = savedError;
    isPassed = SYSCALL_DISPATCH_FILTER_BLOCK;
}

} // namespace

void TrapSystemCalls(Fault which, bool (*turn)()) {
    fault = which;
    isTurn = turn;
    for (const Kind& kind : kKinds) {
        if (kind.fault == which) { failing = &kind; }
    }
    // As the kernel takes it: the C library would put in a way back of its own.
    struct {
        void (*handler)(int, siginfo_t*, void*);
        unsigned long flags;
        void (*restorer)();
        unsigned long mask;
    } const action{OnCall, SA_SIGINFO | SA_NODEFER | kOwnRestorer, tarnwick_end_of_handler, 0};
    if (syscall(SYS_rt_sigaction, SIGSYS, &action, nullptr, kSignalBytes) != 0) { std::abort(); }
    TrapThread();
}

void TrapThread() {
    if (failing == nullptr) { return; }
    const auto start = reinterpret_cast<std::uintptr_t>(&tarnwick_pass_call);
    const auto end = reinterpret_cast<std::uintptr_t>(&tarnwick_behind_calls);
    // The kernel looks behind the call.
    if (prctl(PR_SET_SYSCALL_USER_DISPATCH, PR_SYS_DISPATCH_ON, start, end + 1 - start, &isPassed) != 0) {
        std::abort();
    }
    isPassed = SYSCALL_DISPATCH_FILTER_BLOCK;
}

void PassThread() {
    isPassed = SYSCALL_DISPATCH_FILTER_ALLOW;
}

} // namespace tarnwick::faults

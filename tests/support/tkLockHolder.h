#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "platform/tkFileManagerPosix.h"
#include "shell/tkDataLocks.h"

// Test helper: another process that holds the lock of a time sheet, as
// another user's copy of the program would, from construction (which
// returns once the lock is held, or known not to be) until destruction.
class tkLockHolder {
  public:
    explicit tkLockHolder(const std::string& path) {
        int ready[2];
        if (::pipe(ready) != 0) {
            return;
        }
        _child = ::fork();
        if (_child == 0) {
            tkFileManagerPosix manager;
            const char ok = manager.lockFile(timeSheetLockPath(path), 0).fd >= 0 ? '1' : '0';
            (void)!::write(ready[1], &ok, 1);
            ::pause();
            ::_exit(0);
        }
        char ok = 0;
        _holds = _child > 0 && ::read(ready[0], &ok, 1) == 1 && ok == '1';
        ::close(ready[0]);
        ::close(ready[1]);
    }

    ~tkLockHolder() {
        if (_child > 0) {
            ::kill(_child, SIGKILL);
            ::waitpid(_child, nullptr, 0);
        }
    }

    tkLockHolder(const tkLockHolder&) = delete;
    tkLockHolder& operator=(const tkLockHolder&) = delete;

    bool holds() const { return _holds; }

  private:
    pid_t _child = -1;
    bool _holds = false;
};

#pragma once

namespace tarnwick {

// Has the first wish of a user or the system that the program end (Ctrl-C, SIGTERM) call `handler` instead;
// the second one ends it. `handler` may only set atomic variables: it runs in the midst of anything.
void OnFirstInterrupt(void (*handler)(int));

} // namespace tarnwick

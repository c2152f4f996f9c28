// says: what a run queue runs is called without arguments
#include "foundation/urThread/RunQueue.h"

void later(urThread::RunQueue& queue) {
    queue.add([](int count) { return count; });
}

#include "ThreadOfSize.h"

#include <pthread.h>
#include <sys/mman.h>

#include <stdexcept>
#include <vector>

namespace testsupport {

namespace {

constexpr std::size_t page = 4096;

void *runCall(void *call)
{
    (*static_cast<const std::function<void()> *>(call))();
    return nullptr;
}

void require(bool isDone, const char *complaint)
{
    if (!isDone) {
        throw std::runtime_error(complaint);
    }
}

} // namespace

std::size_t stackUsed(std::size_t bytes, const std::function<void()> &call)
{
    // Below the stack lies a page that nobody may touch.
    void *memory = mmap(nullptr, page + bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED && mprotect(memory, page, PROT_NONE) == 0, "no memory for a stack");
    char *stack = static_cast<char *>(memory) + page;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    require(pthread_attr_setstack(&attributes, stack, bytes) == 0, "no such stack");
    pthread_t thread{};
    auto *argument = const_cast<void *>(static_cast<const void *>(&call));
    require(pthread_create(&thread, &attributes, runCall, argument) == 0, "no thread");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    std::vector<unsigned char> isTouched(bytes / page);
    require(mincore(stack, bytes, isTouched.data()) == 0, "no page table");
    std::size_t untouched = 0;
    while (untouched < isTouched.size() && (isTouched[untouched] & 1U) == 0) {
        ++untouched;
    }
    munmap(memory, page + bytes);
    return bytes - untouched * page;
}

} // namespace testsupport

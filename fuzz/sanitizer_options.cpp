// What the address sanitizer is told when a fuzzer starts. An allocation past the memory that fuzz_host has fails
// as it may in real life, and is no finding; freed memory is not kept long, so that a run's memory stays its own.

extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options()
{
    return "allocator_may_return_null=1:max_allocation_size_mb=300:quarantine_size_mb=32:"
           "detect_stack_use_after_return=1";
}

#pragma once

/**
 * Gives memory that was freed back to the system, which the allocator otherwise keeps for later: for a process that stays after
 * it needed much for a moment. Takes about a millisecond for ten megabytes; other threads wait for memory meanwhile. Any thread.
 */
void ReturnUnusedMemory();

#pragma once

/**
 * Makes the allocator give large freed blocks back at once, and the end of an area when it is unused. By itself it keeps ever
 * more, up to twice the largest block that was ever freed in each thread's area: a process that stays would grow with every large
 * piece of work. For the start of the program.
 */
void LimitUnusedMemory();

/**
 * Gives memory that was freed back to the system, which the allocator otherwise keeps for later: for a process that stays after
 * it needed much for a moment. Takes about a millisecond for ten megabytes; other threads wait for memory meanwhile. Any thread.
 */
void ReturnUnusedMemory();

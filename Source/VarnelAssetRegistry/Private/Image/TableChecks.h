#pragma once

#include "Image/RegistryTables.h"

/**
 * Whether every range, id and length in the tables stays inside of what it points at, so that queries need no checks of their
 * own, and every walk over them ends. Says nothing about whether the content makes sense. Linear in the size of the columns;
 * reads no text.
 */
bool AreTablesSound(const FRegistryTables& Tables);

#pragma once

#include "Image/RegistryTables.h"

/** Columns that follow from others of the same draft. */
namespace DerivedColumns
{
/** The graph turned round, the referencers of each node in registry order. */
void AddReferencers(FRegistryDraft& Draft);
/** Needs assets, entries and classes. Topmost is the class of all Blueprints, NoId where there is none. */
void AddIndexedAssets(FRegistryDraft& Draft, uint32 Topmost);
/** Needs IndexedAssets. NumTexts are those of EZone::Entries. */
void AddUses(FRegistryDraft& Draft, uint32 NumTexts);
}

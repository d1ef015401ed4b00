#pragma once

#include "AssetRegistry/AssetData.h"
#include "Show/ShowPage.h"

class UObject;

/** What reflection alone says less of: one function for each section, which does nothing for assets that have no such thing. Game
 * thread. */
namespace FamilySections
{
/** Entries of an enumeration: {"name", "display", "value"}. */
void SetEntries(const UObject& Object, FShowPage& Page);
/** Fields of a structure that is an asset: {"name", "type", "default", "tooltip", "from"}. */
void SetFields(const UObject& Object, FShowPage& Page);
/** Keys of a blackboard and of its parents, which are loaded: {"name", "type", "description", "from"}. */
void SetKeys(const UObject& Object, FShowPage& Page);
/** Parameters of a material with what states the value; loads its parents: {"name", "kind", "value", "from"}. */
void SetParameters(const UObject& Object, FShowPage& Page);
/** What a Blueprint's class declares, with the defaults: {"name", "type", "value", "from"}. */
void SetVariables(const UObject& Object, FShowPage& Page);
/** What a Blueprint lists about itself, the uppermost level; from the registry alone: {"category", "text", "below"}. */
void SetIndex(const FAssetData& Asset, FShowPage& Page);
/** {"dependencies" and "referencers": {"count", "first": [{"path", "kind", "type"}]}}, from the registry alone. */
FJsonValue MakeReferences(FName Package);
}

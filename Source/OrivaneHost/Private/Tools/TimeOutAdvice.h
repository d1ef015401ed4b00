#pragma once

#include "Core/Base/Containers.h"
#include "OrivaneCore/ToolCommand.h"

/** The Blueprint index starts no query for an empty text, so a search for one that has the family selected never reports. An
 * empty list selects all families. */
bool NeverEnds(const FString& Term, const TArray<FString>& Families);

/** Why a call of a tool may have run out of time and what to do about it; follows the time-out message. Any thread. */
FString ExplainTimeOut(const Orivane::FToolCommand& Command);

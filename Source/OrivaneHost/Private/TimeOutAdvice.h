#pragma once

#include "OrivaneCore/ToolCommand.h"

/** Why a call of a tool may have run out of time and what to do about it; stands behind the time-out message. Any thread. */
FString ExplainTimeOut(const Orivane::FToolCommand& Command);

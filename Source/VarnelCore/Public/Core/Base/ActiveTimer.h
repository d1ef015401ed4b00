#pragma once

#include "Core/Base/Types.h"

/** Whether something that is called again and again wants to be called once more. */
enum class EActiveTimerReturnType : uint8
{
	Stop,
	Continue,
};

#pragma once

#include "CoreObject/Packages/Loader.h"

/** What SetReferenceListener was given; null: nobody listens. */
const std::function<void(const FForeignReference&)>& GetReferenceListener();

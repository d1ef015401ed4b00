#include "CoreObject/Objects/ReferenceListener.h"

namespace
{
std::function<void(const FForeignReference&)> CurrentListener;
}

void SetReferenceListener(std::function<void(const FForeignReference&)> Listener)
{
	CurrentListener = std::move(Listener);
}

const std::function<void(const FForeignReference&)>& GetReferenceListener()
{
	return CurrentListener;
}

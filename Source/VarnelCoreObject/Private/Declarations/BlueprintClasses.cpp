#include "Declarations/BlueprintClasses.h"

#include "Core/Base/Map.h"
#include "Core/Text/Unicode.h"

#include <algorithm>
#include <mutex>

namespace
{
constexpr FStringView BuiltIn[] = {"/Script/Engine.Blueprint", "/Script/Engine.WidgetBlueprint", "/Script/Engine.AnimBlueprint"};

struct FDeclaredClasses
{
	std::mutex Lock;
	TSet<FString> Paths;
};

FDeclaredClasses& GetDeclared()
{
	static FDeclaredClasses Declared;
	return Declared;
}
}

bool BlueprintClasses::Contains(FStringView ClassPath)
{
	if (std::any_of(std::begin(BuiltIn), std::end(BuiltIn),
			[ClassPath](FStringView Path) { return Unicode::EqualsFolded(Path, ClassPath); }))
		return true;
	FDeclaredClasses& Declared = GetDeclared();
	const std::scoped_lock Lock(Declared.Lock);
	return Declared.Paths.Contains(FString(ClassPath));
}

void BlueprintClasses::AddDeclared(const FString& ClassPath)
{
	FDeclaredClasses& Declared = GetDeclared();
	const std::scoped_lock Lock(Declared.Lock);
	Declared.Paths.Add(ClassPath);
}

void BlueprintClasses::RemoveAllDeclared()
{
	FDeclaredClasses& Declared = GetDeclared();
	const std::scoped_lock Lock(Declared.Lock);
	Declared.Paths.Empty();
}

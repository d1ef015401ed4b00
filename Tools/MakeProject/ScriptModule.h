#pragma once

#include "Values.h"

#include <span>
#include <string>
#include <vector>

/** What classes of the script module are for. */
enum class EScriptRole : uint8
{
	DataAsset,
	Actor,
	BehaviorTask,
	BehaviorDecorator,
	BehaviorService,
	QueryGenerator,
	QueryTest,
	EffectRenderer,
	Row,
	Count
};

struct FScriptProperty
{
	std::string Name;
	EValue Type = EValue::Int;
	bool bDeprecated = false;
};

/** A declared class, or a structure where the role is Row. */
struct FScriptType
{
	std::string Name;
	std::string Path;  // "/Script/Generated.WeaponData"
	std::string Super; // path of the parent; empty for none
	uint32 Depth = 0;  // declared types that it derives from
	std::vector<FScriptProperty> Properties;
};

/** The script package /Script/Generated: what the project's assets are of, beyond the engine's classes. */
class FScriptModule
{
public:
	/** More classes of data assets and row structures in larger projects. */
	FScriptModule(uint32 NumAssets, FRandom Random);

	/** Never empty. */
	std::span<const FScriptType> TypesFor(EScriptRole Role) const { return Types[static_cast<uint32>(Role)]; }

	/** The file's text. */
	std::string ToJson(FRandom Random) const;

	static std::span<const std::string_view> RarityNames();

private:
	void Declare(EScriptRole Role, uint32 Num, FRandom& Random);
	void ChooseSuper(EScriptRole Role, std::string_view NativeSuper, FScriptType& Type, FRandom& Random) const;

	std::vector<FScriptType> Types[static_cast<uint32>(EScriptRole::Count)];
};

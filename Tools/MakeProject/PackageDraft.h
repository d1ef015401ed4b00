#pragma once

#include "JsonText.h"
#include "LinkPicker.h"
#include "ScriptModule.h"

enum class ELinkKind : uint8
{
	Hard,
	Soft
};

/** One outgoing link of the package being written. */
struct FLink
{
	uint32 Target; // a package, ScriptTarget or MissingTarget
	bool bHard;
	bool bGame;
};

constexpr uint32 ScriptTarget = UINT32_MAX;		 // the script module
constexpr uint32 MissingTarget = UINT32_MAX - 1; // a package that does not exist any more

/**
 * A package while it is written: its tags, search entries and objects grow in buffers of their own and every reference
 * adds a link, so that the links can stand before the objects that need them. One draft a thread, used for one package
 * after another. The random numbers are the package's own, so a package's text does not depend on the thread.
 */
class FPackageDraft
{
public:
	FPackageDraft(const FProjectPlan& InPlan, const FLinkPicker& InPicker, const FScriptModule& InScript);

	const FProjectPlan& Plan;
	const FLinkPicker& Picker;
	const FScriptModule& Script;

	/** Forgets the last package and begins another one. */
	void Begin(uint32 InPackage);

	/** Adds the links that no property stands for and puts the file's text together. Valid until the next Begin. */
	const std::string& Finish();

	uint32 Package = 0;
	EAssetClass Class = EAssetClass::World;
	FRandom Random{0};
	std::string AssetClassPath; // "/Script/Engine.BehaviorTree"
	FJsonText Tags;				// inside of the object
	FJsonText Index;			// inside of the list
	FJsonText Objects;			// inside of the list

	const std::vector<FLink>& GetLinks() const { return Links; }

	/** Opens the asset's own object, or one below it such as "Root.Service_0", up to the inside of its properties. */
	void BeginAssetObject();
	void BeginPart(std::string_view Part, std::string_view ClassPath);
	void EndPart();

	/** Writes "BT_Guard:Root" for the part "Root". */
	void WritePartPath(FJsonText& Json, std::string_view Part);

	/** Writes the object path of an asset and links to its package. */
	void WriteReference(FJsonText& Json, uint32 Target, ELinkKind Kind = ELinkKind::Hard);

	/** Writes a reference to some asset of the class, or null where there is none or the package has links enough. */
	void WriteAnyReference(FJsonText& Json, EAssetClass TargetClass, ELinkKind Kind);

	/** Writes the path of something in the script module and links to it. */
	void WriteScriptPath(FJsonText& Json, std::string_view Path);

	/** Appends the object path, with what follows it, to a string that is open; links to the package. */
	void AppendReference(std::string& Out, uint32 Target, std::string_view Behind, ELinkKind Kind = ELinkKind::Hard);

	/** Writes a value of a property. */
	void WriteValue(FJsonText& Json, EValue Type);

	/** Writes a type as declarations spell it, and links to what it names. */
	void WriteType(FJsonText& Json, EValue Type);

	void LinkTo(uint32 Target, ELinkKind Kind);

private:
	void AddFurtherLinks();
	void WriteHeader();
	void WriteLink(const FLink& Link);
	bool HasRoomForLink() const { return Links.size() < NumLinksWanted; }

	std::vector<FLink> Links;
	std::vector<uint32> LinkedBy; // per package: the last package that linked to it, plus 1
	uint32 NumLinksWanted = 0;
	bool bLinksScript = false;
	FJsonText File;
};

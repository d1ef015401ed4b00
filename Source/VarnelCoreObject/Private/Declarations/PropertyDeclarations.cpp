#include "Core/Base/Map.h"
#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "Reflection/JsonFaults.h"

#include <algorithm>
#include <array>

namespace
{
/** The members of an object by key, empty where absent and the last where repeated; other members are reported. */
template <std::size_t N>
std::array<FJsonRef, N> TakeMembers(const FJsonRef& Object, const std::array<FStringView, N>& Keys, FPropertyReader& Reader)
{
	std::array<FJsonRef, N> Members;
	for (const FJsonRef Member : Object)
	{
		const auto Known = std::find(Keys.begin(), Keys.end(), Member.Key());
		if (Known == Keys.end())
			Reader.ReportUnknownMember(Member);
		else
			Members[static_cast<std::size_t>(Known - Keys.begin())] = Member;
	}
	return Members;
}

/** A member that must be a string with something in it; empty and a diagnostic otherwise. */
FStringView RequireText(const FJsonRef& Object, const FJsonRef& Member, const char* Key, FPropertyReader& Reader)
{
	if (Member && Member.IsString() && !Member.Text().empty())
		return Member.Text();
	Reader.Report(Member ? Member : Object, EDiagnosticSeverity::Error, "declaration",
		FString("'") + Key + "' must be a string that is not empty");
	return {};
}

/** The elements of a list that are objects; anything else is reported. */
template <class TVisit>
void ForEachObject(const FJsonRef& List, FPropertyReader& Reader, TVisit&& Visit)
{
	if (!List)
		return;
	if (!List.IsArray())
		return Reader.Report(List, EDiagnosticSeverity::Error, "declaration", "declarations are an array");
	for (const FJsonRef Element : List)
	{
		if (Element.IsObject())
			Visit(Element);
		else
			Reader.Report(Element, EDiagnosticSeverity::Error, "declaration", "a declaration is an object");
	}
}

/** The property that a declaration states; null where it is faulty. */
TUniquePtr<FProperty> MakeDeclared(
	UStruct& Struct, const FJsonRef& Declaration, const FJsonRef& Name, const FJsonRef& Type, FPropertyReader& Reader)
{
	const FName PropertyName = RequireText(Declaration, Name, "name", Reader);
	const FStringView TypeText = RequireText(Declaration, Type, "type", Reader);
	if (PropertyName.IsNone() || TypeText.empty())
		return nullptr;
	if (Struct.FindOwnProperty(PropertyName))
	{
		Reader.Report(Name, EDiagnosticSeverity::Error, "repeated-property",
			"'" + PropertyName.ToString() + "' is a property of " + Struct.GetName() + " already");
		return nullptr;
	}
	FString Fault;
	TUniquePtr<FProperty> Property = MakeProperty(TypeText, PropertyName, Fault);
	if (Property)
		return Property;
	Reader.Report(Type, EDiagnosticSeverity::Warning, "unknown-type", Fault + "; the property's values are not read");
	return MakeUnique<FUnreadProperty>(PropertyName, FString(TypeText));
}

void ReadRemarks(FProperty& Property, const FJsonRef& Authored, const FJsonRef& Deprecated, FPropertyReader& Reader)
{
	if (Authored && Authored.IsString())
		Property.SetAuthoredName(FString(Authored.Text()));
	else if (Authored)
		Reader.Report(Authored, EDiagnosticSeverity::Error, "declaration", "'authored' must be a string");
	if (Deprecated && Deprecated.IsBool())
		Property.SetDeprecated(Deprecated.Bool());
	else if (Deprecated)
		Reader.Report(Deprecated, EDiagnosticSeverity::Error, "declaration", "'deprecated' must be true or false");
}
}

void FPropertyReader::AddDeclarations(UStruct& Struct, const FJsonRef& Declarations, const FJsonRef& Super)
{
	constexpr std::array<FStringView, 5> Keys = {"name", "type", "authored", "default", "deprecated"};
	DeclaredTypes.push_back(&Struct);
	PendingTypes[&Struct].Super = Super;
	ForEachObject(Declarations, *this,
		[this, &Struct, &Keys](const FJsonRef& Declaration)
		{
			const auto [Name, Type, Authored, Default, Deprecated] = TakeMembers(Declaration, Keys, *this);
			TUniquePtr<FProperty> Property = MakeDeclared(Struct, Declaration, Name, Type, *this);
			if (!Property)
				return;
			ReadRemarks(*Property, Authored, Deprecated, *this);
			if (Struct.AddProperty(std::move(Property)))
				PendingTypes[&Struct].Properties.push_back(Declaration);
		});
}

void FPropertyReader::FinishDeclarations(UStruct& Struct)
{
	const auto Pending = PendingTypes.extract(&Struct);
	if (Pending.empty())
		return;
	const FPendingType& Declared = Pending.mapped();
	TArray<FLinkFault> Faults;
	Struct.Link(&Faults);
	for (FLinkFault& Fault : Faults)
	{
		const bool bIsParent = Fault.Property == INDEX_NONE;
		const FJsonRef At =
			bIsParent ? Declared.Super : Declared.Properties[static_cast<std::size_t>(Fault.Property)].Find("name");
		Report(At, EDiagnosticSeverity::Error, Fault.Rule, std::move(Fault.Text));
	}
	for (const FJsonRef& Declaration : Declared.Properties)
	{
		const FJsonRef Default = Declaration.Find("default");
		FProperty* const Property = Default ? Struct.FindOwnProperty(FName(Declaration.Find("name").Text())) : nullptr;
		if (Property)
			Struct.ReadDefault(*Property, Default, *this);
	}
}

TArray<UEnum::FEntry> FPropertyReader::ReadEnumEntries(const FJsonRef& List, FStringView EnumName)
{
	const FString Prefix = FString(EnumName) + "::";
	const FString MaximumName = FString(EnumName) + "_MAX";
	TArray<UEnum::FEntry> Entries;
	TSet<FString> Names;
	ForEachObject(List, *this,
		[&](const FJsonRef& Element)
		{
			const auto [Name, Display] = TakeMembers<2>(Element, {"name", "display"}, *this);
			const FString EntryName(RequireText(Element, Name, "name", *this));
			if (EntryName.IsEmpty())
				return;
			if (!Names.Add(EntryName))
				return Report(Name, EDiagnosticSeverity::Warning, "repeated-entry",
					FJsonFaults::Quote(EntryName) + " is an entry already; this one is left out");
			if (Display && !Display.IsString())
				Report(Display, EDiagnosticSeverity::Error, "declaration", "'display' must be a string");
			const bool bHasDisplay = Display && Display.IsString();
			Entries.Add(
				{Prefix + EntryName, FText::FromString(bHasDisplay ? FString(Display.Text()) : EntryName), Entries.Num()});
		});
	Entries.Add({Prefix + MaximumName, FText::FromString(MaximumName), Entries.Num()});
	return Entries;
}

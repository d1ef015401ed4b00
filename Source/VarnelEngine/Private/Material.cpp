#include "Engine/Material.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "MaterialLine.h"

namespace
{
constexpr FStringView NameKey = "Name";
constexpr FStringView ValueKey = "Value";

void AppendParameters(const FMaterialParameterLine& Line, TArray<FMaterialParameterInfo>& Out)
{
	if (Line.Above)
	{
		for (const FMaterialParameterInfo& Parameter : Line.Above->Parameters)
		{
			const UMaterialInterface* const* const Nearer = Line.Below.Find(Parameter.Name);
			Out.Add({Parameter.Name, Nearer ? *Nearer : Parameter.Stating});
		}
	}
	for (const auto& [Name, Stating] : Line.Below)
	{
		if (!Line.Above || !Line.Above->Places.Contains(Name))
			Out.Add({Name, Stating});
	}
}

/** Null where no material of the line states the parameter. */
const UMaterialInterface* FindStating(const FMaterialParameterLine& Line, FName Name)
{
	if (const UMaterialInterface* const* const Nearer = Line.Below.Find(Name))
		return *Nearer;
	const int32* const Place = Line.Above ? Line.Above->Places.Find(Name) : nullptr;
	return Place ? Line.Above->Parameters[*Place].Stating : nullptr;
}

/** One element of a list of parameters; nothing is added where it names none, or one that is there. */
template <class T>
void ReadParameter(const FJsonRef& Json, FPropertyReader& Reader, const FProperty& ValueProperty, TMaterialParameters<T>& Out)
{
	static const FNameProperty NameProperty{FName(NameKey)};
	for (const FJsonRef Member : Json)
		if (Member.Key() != NameKey && Member.Key() != ValueKey)
			Reader.ReportUnknownMember(Member);
	const FJsonRef NameJson = Json.Find(NameKey);
	if (!NameJson)
		return Reader.Report(Json, EDiagnosticSeverity::Error, "property-type", "the parameter has no 'Name'");
	FName Name;
	if (!NameProperty.ReadValue(&Name, NameJson, Reader))
		return;
	if (Out.Contains(Name))
		return Reader.Report(NameJson, EDiagnosticSeverity::Warning, "repeated-parameter",
			"the list has a parameter '" + Name.ToString() + "' already; the first one counts");
	const FJsonRef ValueJson = Json.Find(ValueKey);
	T Value{};
	const bool bHasValue = ValueJson && !ValueJson.IsNull() && ValueProperty.ReadValue(&Value, ValueJson, Reader);
	Out.Add(Name, bHasValue ? TOptional<T>(Value) : TOptional<T>());
}

template <class T>
void ReadParameters(const FJsonRef& Json, FPropertyReader& Reader, const FProperty& ValueProperty, TMaterialParameters<T>& Out)
{
	if (!Json.IsArray())
		return Reader.Report(
			Json, EDiagnosticSeverity::Error, "property-type", "parameters are an array of objects with 'Name' and 'Value'");
	for (const FJsonRef Element : Json)
	{
		if (Element.IsObject())
			ReadParameter(Element, Reader, ValueProperty, Out);
		else
			Reader.Report(
				Element, EDiagnosticSeverity::Error, "property-type", "a parameter is an object with 'Name' and 'Value'");
	}
}
}

UScriptStruct* FLinearColor::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FLinearColor>("/Script/Engine.LinearColor")
											 .Member("R", &FLinearColor::R)
											 .Member("G", &FLinearColor::G)
											 .Member("B", &FLinearColor::B)
											 .Member("A", &FLinearColor::A)
											 .Build();
	return Struct;
}

UClass* UMaterialInterface::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UMaterialInterface>("/Script/Engine.MaterialInterface", UObject::StaticClass()).Build();
	return Class;
}

FMaterialParameterLine UMaterialInterface::GetScalarParameterLine() const
{
	return TMaterialLineReader<float>(&UMaterialInterface::ScalarParameters, &UMaterialInterface::ScalarView).Read(*this);
}

FMaterialParameterLine UMaterialInterface::GetVectorParameterLine() const
{
	return TMaterialLineReader<FLinearColor>(&UMaterialInterface::VectorParameters, &UMaterialInterface::VectorView).Read(*this);
}

FMaterialParameterLine UMaterialInterface::GetTextureParameterLine() const
{
	return TMaterialLineReader<FObjectPtr>(&UMaterialInterface::TextureParameters, &UMaterialInterface::TextureView).Read(*this);
}

void UMaterialInterface::GetAllScalarParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const
{
	AppendParameters(GetScalarParameterLine(), Parameters);
}

void UMaterialInterface::GetAllVectorParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const
{
	AppendParameters(GetVectorParameterLine(), Parameters);
}

void UMaterialInterface::GetAllTextureParameterInfo(TArray<FMaterialParameterInfo>& Parameters) const
{
	AppendParameters(GetTextureParameterLine(), Parameters);
}

template <class T>
TOptional<T> UMaterialInterface::FindValue(const FMaterialParameterInfo& Parameter,
	TMaterialParameters<T> UMaterialInterface::*Stated, FMaterialParameterLine (UMaterialInterface::*GetLine)() const) const
{
	const UMaterialInterface* const Stating =
		Parameter.Stating ? Parameter.Stating : FindStating((this->*GetLine)(), Parameter.Name);
	const TOptional<T>* const Found = Stating ? (Stating->*Stated).Find(Parameter.Name) : nullptr;
	return Found ? *Found : std::nullopt;
}

bool UMaterialInterface::GetScalarParameterValue(const FMaterialParameterInfo& Parameter, float& Out) const
{
	const TOptional<float> Value =
		FindValue(Parameter, &UMaterialInterface::ScalarParameters, &UMaterialInterface::GetScalarParameterLine);
	Out = Value.value_or(Out);
	return Value.has_value();
}

bool UMaterialInterface::GetVectorParameterValue(const FMaterialParameterInfo& Parameter, FLinearColor& Out) const
{
	const TOptional<FLinearColor> Value =
		FindValue(Parameter, &UMaterialInterface::VectorParameters, &UMaterialInterface::GetVectorParameterLine);
	Out = Value.value_or(Out);
	return Value.has_value();
}

bool UMaterialInterface::GetTextureParameterValue(const FMaterialParameterInfo& Parameter, FObjectPtr& Out) const
{
	const TOptional<FObjectPtr> Value =
		FindValue(Parameter, &UMaterialInterface::TextureParameters, &UMaterialInterface::GetTextureParameterLine);
	Out = Value.value_or(Out);
	return Value.has_value();
}

bool UMaterialInterface::ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader)
{
	static const FFloatProperty Scalar{FName(ValueKey)};
	static const FStructProperty Vector{FName(ValueKey), *FLinearColor::StaticStruct()};
	static const FObjectPropertyBase Texture{EObjectReference::Object, FName(ValueKey), &UObject::StaticClass};
	if (Key == "ScalarParameters")
		ReadParameters(Value, Reader, Scalar, ScalarParameters);
	else if (Key == "VectorParameters")
		ReadParameters(Value, Reader, Vector, VectorParameters);
	else if (Key == "TextureParameters")
		ReadParameters(Value, Reader, Texture, TextureParameters);
	else
		return false;
	return true;
}

UClass* UMaterial::StaticClass()
{
	static UClass* const Class = TClassBuilder<UMaterial>("/Script/Engine.Material", UMaterialInterface::StaticClass()).Build();
	return Class;
}

UClass* UMaterialInstance::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UMaterialInstance>("/Script/Engine.MaterialInstance", UMaterialInterface::StaticClass())
			.Member("Parent", &UMaterialInstance::Parent)
			.Build();
	return Class;
}

UClass* UMaterialInstanceConstant::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UMaterialInstanceConstant>("/Script/Engine.MaterialInstanceConstant", UMaterialInstance::StaticClass())
			.Build();
	return Class;
}

UClass* UMaterialFunctionInterface::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UMaterialFunctionInterface>("/Script/Engine.MaterialFunctionInterface", UObject::StaticClass()).Build();
	return Class;
}

#pragma once

#include <string>

/** The text of a package file. Each member holds the elements of a JSON list, without brackets. */
struct FPackageText
{
	std::string Assets;
	std::string Dependencies;
	std::string BlueprintIndex;
	std::string Objects;

	std::string ToJson() const
	{
		return R"({"varnel_package":1,"assets":[)" + Assets + R"(],"dependencies":[)" + Dependencies +
			R"(],"blueprint_index":[)" + BlueprintIndex + R"(],"objects":[)" + Objects + "]}";
	}
};

/** "W_Menu" of "/Game/UI/W_Menu". */
inline std::string GetShortName(const std::string& Package)
{
	return Package.substr(Package.rfind('/') + 1);
}

/** An engine class may be given by its short name. */
inline std::string GetClassPath(const std::string& Class)
{
	return Class.starts_with("/") ? Class : "/Script/Engine." + Class;
}

/** An element of the list of assets. Members: further ones, each behind a comma. */
inline std::string MakeAssetJson(const std::string& Name, const std::string& Class, const std::string& Members = "")
{
	return R"({"name":")" + Name + R"(","class":")" + GetClassPath(Class) + "\"" + Members + "}";
}

/** An element of the list of objects. Properties: the members of a JSON object. */
inline std::string MakeObjectJson(const std::string& Path, const std::string& Class, const std::string& Properties)
{
	return R"({"path":")" + Path + R"(","class":")" + GetClassPath(Class) + R"(","properties":{)" + Properties + "}}";
}

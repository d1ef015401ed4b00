#include "Project/ProjectFiles.h"

#include "Core/Files/File.h"
#include "Core/Files/ProjectFolder.h"
#include "Core/Json/JsonDocument.h"
#include "Core/Text/Unicode.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Reflection/DeveloperSettings.h"

namespace
{
constexpr uint64 MaxDescriptorBytes = 1024 * 1024;
constexpr uint64 MaxSettingsBytes = 1024 * 1024;
constexpr uint64 MaxScriptBytes = 64 * 1024 * 1024; // of all script modules together
constexpr const char* SettingsFile = "Config/DefaultGame.ini";
constexpr const char* DescriptorExtension = ".uproject";
constexpr const char* ScriptExtension = ".vscript";
constexpr FStringView PluginExtension = "uplugin";

/** Directly in the folder, which is relative to the project: "" or with a slash at the end. */
bool IsFileIn(std::string_view Folder, std::string_view Path, const char* Extension)
{
	return Path.starts_with(Folder) && Path.find('/', Folder.size()) == std::string_view::npos &&
		FString(Path).EndsWith(Extension);
}

/** Names of the files directly in a folder that end with Extension, in ascending byte order. */
TArray<FString> ListFolder(const FString& Folder, const char* Extension)
{
	FFileTreeOptions Options;
	Options.NumThreads = 1;
	Options.EnterFolder = [](std::string_view) { return false; };
	Options.KeepFile = [Extension](std::string_view Name) { return FString(Name).EndsWith(Extension); };
	const FFileTree Files = FFileTree::List(Folder, Options);
	TArray<FString> Names;
	for (int32 Index = 0; Index < Files.Num(); ++Index)
		Names.Add(FString(Files.GetRelativePath(Index)));
	return Names;
}

bool PickDescriptor(const FString& Folder, FString& OutDescriptor, FString& OutError)
{
	const TArray<FString> Descriptors = ListFolder(Folder, DescriptorExtension);
	if (Descriptors.Num() == 1)
	{
		OutDescriptor = Descriptors[0];
		return true;
	}
	if (Descriptors.IsEmpty())
		OutError = FString("no *.uproject in ") + Folder +
			"; name a project folder with --project, or make this one a project: " +
			"echo '{\"name\": \"MyGame\"}' > MyGame.uproject";
	else
		OutError = FString("more than one *.uproject in ") + Folder + " (" + Descriptors[0] + ", " + Descriptors[1] +
			"); name the one to open with --project, or remove the others";
	return false;
}

bool FindUpward(FString& OutFolder, FString& OutDescriptor, FString& OutError)
{
	const FString Start = FPaths::ConvertRelativePathToFull(".");
	for (FString Folder = Start;; Folder = FPaths::GetPath(Folder))
	{
		const TArray<FString> Descriptors = ListFolder(Folder.IsEmpty() ? FString("/") : Folder, DescriptorExtension);
		if (!Descriptors.IsEmpty())
		{
			OutFolder = Folder;
			return PickDescriptor(Folder, OutDescriptor, OutError);
		}
		if (Folder.IsEmpty())
			break;
	}
	OutError = FString("no *.uproject in ") + Start +
		" or any folder above it; name a project folder with --project, or start the program inside one";
	return false;
}

void Report(FDiagnosticSink& Diagnostics, const FString& File, const char* Rule, const FString& Text)
{
	Diagnostics.Add({.File = File, .Severity = EDiagnosticSeverity::Error, .Text = Text, .Rule = Rule});
}

const char* DescribeRead(EFileRead Outcome)
{
	switch (Outcome)
	{
		case EFileRead::Missing:
			return "is missing, not a regular file, or reached through a symbolic link";
		case EFileRead::Unreadable:
			return "cannot be read; check its permissions";
		case EFileRead::TooLarge:
		case EFileRead::Ok:
			break;
	}
	return "was read";
}

/** False (and reported) when the file cannot be read; a file that does not exist is reported only with bRequired. */
bool ReadFile(
	const FString& Folder, const FString& File, bool bRequired, uint64 MaxBytes, std::string& Out, FDiagnosticSink& Diagnostics)
{
	const EFileRead Outcome = FProjectFolder(Folder).Read(File, Out, MaxBytes);
	if (Outcome == EFileRead::TooLarge)
		Report(Diagnostics, File, "too-large",
			FString::Printf("the file is larger than %llu bytes, so it is not read", static_cast<unsigned long long>(MaxBytes)));
	else if (Outcome != EFileRead::Ok && (bRequired || Outcome != EFileRead::Missing))
		Report(Diagnostics, File, "unreadable-file", FString("the file ") + DescribeRead(Outcome));
	return Outcome == EFileRead::Ok;
}

/** Parses a descriptor's JSON object; false and a diagnostic when it is none. */
bool ParseDescriptor(const std::string& Bytes, const FString& File, FJsonDocument& Document, FDiagnosticSink& Diagnostics)
{
	if (!Document.Parse(Bytes))
	{
		const FJsonError& Error = Document.GetError();
		Diagnostics.Add({.File = File, .Line = Error.Line, .Column = Error.Column, .Text = Error.Text, .Rule = Error.Rule});
		return false;
	}
	if (!Document.Root().IsObject())
	{
		Diagnostics.Add({.File = File, .Line = 1, .Column = 1, .Text = "a descriptor is a JSON object", .Rule = "json-type"});
		return false;
	}
	return true;
}

void ReadText(const FJsonDocument& Document, const FString& File, const char* Key, FString& Out, FDiagnosticSink& Diagnostics)
{
	const FJsonRef Value = Document.Root().Find(Key);
	if (Value && Value.IsString())
	{
		Out = FString(Value.Text());
		return;
	}
	if (!Value)
		return;
	FDiagnostic Diagnostic{.File = File, .Text = FString("\"") + Key + "\" must be a string", .Rule = "json-type"};
	Document.Locate(Value.Offset(), Diagnostic.Line, Diagnostic.Column);
	Diagnostics.Add(Diagnostic);
}

bool IsNameTaken(const FString& Name, const TArray<FProjectPlugin>& Plugins)
{
	return Name == "Game" || Name == "Engine" || Name == "Script" ||
		Plugins.ContainsByPredicate([&](const FProjectPlugin& Plugin) { return Plugin.Name == Name; });
}
}

bool ProjectFiles::IsDescriptor(std::string_view Path)
{
	return IsFileIn("", Path, DescriptorExtension);
}

bool ProjectFiles::IsSettings(std::string_view Path)
{
	return Path == SettingsFile;
}

bool ProjectFiles::IsScriptModule(std::string_view Path)
{
	return IsFileIn("Script/", Path, ScriptExtension);
}

bool ProjectFiles::IsPlugin(std::string_view Path)
{
	return Path.starts_with("Plugins/") && FPaths::GetExtension(Path) == PluginExtension;
}

bool ProjectFiles::FindDescriptor(const FString& Path, FString& OutFolder, FString& OutDescriptor, FString& OutError)
{
	if (const FString Start = FPaths::ConvertRelativePathToFull(Path.IsEmpty() ? "." : Path); !Unicode::IsValidUtf8(Start))
	{
		OutError = "the path " + FString::FromExternal(Start) + " is not valid UTF-8; rename the folders on it";
		return false;
	}
	if (Path.IsEmpty())
		return FindUpward(OutFolder, OutDescriptor, OutError);
	const FString Full = FPaths::ConvertRelativePathToFull(Path);
	const bool bIsFile = IFileManager::Get().FileExists(Full);
	if (bIsFile && Path.EndsWith(DescriptorExtension)) // of several in a folder the one that was named
	{
		OutFolder = FString(FPaths::GetPath(Full));
		OutDescriptor = FString(FPaths::GetCleanFilename(Full));
		return true;
	}
	OutFolder = Full;
	if (IFileManager::Get().DirectoryExists(OutFolder))
		return PickDescriptor(OutFolder, OutDescriptor, OutError);
	OutError = bIsFile ? Full + " is a file; name a project folder, or its *.uproject, with --project"
					   : "there is no folder " + OutFolder + "; name an existing project folder with --project";
	return false;
}

void ProjectFiles::ReadDescriptor(FProjectSummary& Summary, FDiagnosticSink& Diagnostics)
{
	Summary.Name = FString(FPaths::GetBaseFilename(Summary.DescriptorFile));
	std::string Bytes;
	FJsonDocument Document;
	if (!ReadFile(Summary.Folder, Summary.DescriptorFile, true, MaxDescriptorBytes, Bytes, Diagnostics) ||
		!ParseDescriptor(Bytes, Summary.DescriptorFile, Document, Diagnostics))
		return;
	ReadText(Document, Summary.DescriptorFile, "name", Summary.Name, Diagnostics);
	ReadText(Document, Summary.DescriptorFile, "description", Summary.Description, Diagnostics);
}

void ProjectFiles::ReadSettings(const FString& Folder, FDiagnosticSink& Diagnostics)
{
	std::string Bytes;
	std::string Scratch;
	ReadFile(Folder, SettingsFile, false, MaxSettingsBytes, Bytes, Diagnostics);
	const FConfigFile File = FConfigFile::Parse(FFileHelper::DecodeText(Bytes, Scratch), SettingsFile, &Diagnostics);
	LoadDeveloperSettings(File, SettingsFile, &Diagnostics);
}

TOptional<FFileStamp> ProjectFiles::GetSettingsStamp(const FString& Folder)
{
	FFileStamp Stamp;
	return FProjectFolder(Folder).GetFileStamp(SettingsFile, Stamp) ? TOptional<FFileStamp>(Stamp) : TOptional<FFileStamp>();
}

TArray<FScriptModuleFile> ProjectFiles::ReadScriptModules(const FString& Folder, FDiagnosticSink& Diagnostics)
{
	TArray<FScriptModuleFile> Modules;
	uint64 BytesLeft = MaxScriptBytes;
	for (const FString& Name : ListFolder(Folder + "Script", ScriptExtension))
	{
		FScriptModuleFile Module{.ModuleName = FString(FPaths::GetBaseFilename(Name)), .FileName = FString("Script/") + Name};
		if (!ReadFile(Folder, Module.FileName, true, BytesLeft, Module.Text, Diagnostics))
			continue;
		BytesLeft -= Module.Text.size();
		Modules.Add(std::move(Module));
	}
	return Modules;
}

TArray<FProjectPlugin> ProjectFiles::FindPlugins(const FString& Folder, FDiagnosticSink& Diagnostics)
{
	FFileTreeOptions Options;
	Options.KeepFile = [](std::string_view Path) { return FPaths::GetExtension(Path) == PluginExtension; };
	const FFileTree Files = FFileTree::List(Folder + "Plugins", Options);
	TArray<FProjectPlugin> Plugins;
	for (int32 Index = 0; Index < Files.Num(); ++Index)
	{
		const FString File = FString("Plugins/") + FString::FromExternal(Files.GetRelativePath(Index));
		const FProjectPlugin Plugin{.Name = FString(FPaths::GetBaseFilename(File)), .Folder = FString(FPaths::GetPath(File))};
		if (!Plugin.Name.Equals(FPaths::GetCleanFilename(Plugin.Folder)))
		{
			Report(Diagnostics, File, "plugin-name", "a plugin descriptor has the name of its folder; rename one of them");
			continue;
		}
		if (IsNameTaken(Plugin.Name, Plugins) || !FPackageName::IsValidLongPackageName(FString("/") + Plugin.Name + "/Asset"))
		{
			Report(Diagnostics, File, "plugin-name",
				FString("the plugin name \"") + Plugin.Name +
					"\" is taken or cannot be a root of package names; its content is left out");
			continue;
		}
		std::string Bytes;
		FJsonDocument Document;
		if (ReadFile(Folder, File, true, MaxDescriptorBytes, Bytes, Diagnostics))
			ParseDescriptor(Bytes, File, Document, Diagnostics);
		Plugins.Add(Plugin);
	}
	return Plugins;
}

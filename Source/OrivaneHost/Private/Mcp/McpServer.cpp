#include "Mcp/McpServer.h"

#include "Core/Base/Failure.h"
#include "Mcp/McpTools.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr std::size_t MaxOpenCalls = 1024;
constexpr int32 MaxTokenBytes = 4096; // of a progress token, which every progress message repeats
constexpr auto ProgressTime = std::chrono::seconds(2);

bool IsUsableToken(const FJsonValue& Token)
{
	FString Text;
	return Token.Type() == EJson::String ? Token.TryGetString(Text) && Text.NumBytes() <= MaxTokenBytes : Token.IsInteger();
}

FJsonValue ReadProgressToken(const FMcpMessage& Message)
{
	const FJsonValue* Token = Message.Meta->FindField("progressToken");
	return Token && IsUsableToken(*Token) ? *Token : FJsonValue();
}

bool IsBlank(std::string_view Line)
{
	return Line.find_first_not_of(" \t\r") == std::string_view::npos;
}

/** Nothing is paged, so only the empty cursor, which means the beginning, was ever handed out. */
bool IsUsableCursor(const FJsonValue* Cursor)
{
	FString Text;
	return !Cursor || Cursor->IsNull() || (AsJsonString(Cursor, Text) && Text.IsEmpty());
}

/** A missing object of arguments is an empty one; a value of another kind goes to the tool, which has its own words for it. */
FJsonValue ReadArguments(const FJsonObject& Params)
{
	const FJsonValue* Given = Params.FindField("arguments");
	return Given && !Given->IsNull() ? *Given : FJsonValue(MakeShared<FJsonObject>());
}

Orivane::FToolResult MakeFailure(const FMcpTool& Tool, const FString& Error)
{
	Orivane::FToolResult Result(Orivane::FToolCommand("", Tool.Name, ""));
	Result.AddErrorMessage(Error);
	return Result;
}

FString DescribeProgress(const FMcpCallProgress& Progress)
{
	if (Progress.NumTotal <= 0)
		return Progress.Text;
	return Progress.Text + ", " + FString::FromInt(Progress.NumDone) + " of " + FString::FromInt(Progress.NumTotal);
}

std::string WriteAnswer(const Orivane::FToolResult& Result, const FMcpAnswerForm& Form)
{
	try
	{
		return WriteMcpToolAnswer(Result, Form);
	}
	catch (const std::exception& Failure)
	{
		return WriteMcpToolAnswer(
			MakeFailure(*Form.Tool, FString("The answer cannot be written: ") + DescribeFailure(Failure)), Form);
	}
}

FString DescribeSeconds(std::chrono::milliseconds Time)
{
	return FString::FromInt(std::chrono::ceil<std::chrono::seconds>(Time).count()) + " s";
}
}

const FMcpServer::FMethod FMcpServer::Methods[] = {
	{"initialize", &FMcpServer::Initialize, false, false},
	{"ping", &FMcpServer::Ping, false, false},
	{"server/discover", &FMcpServer::Discover, true, false},
	{"tools/list", &FMcpServer::ListTools, false, true},
	{"tools/call", &FMcpServer::CallTool, false, true},
};

FMcpServer::FMcpServer(TSharedPtr<IMcpToolHost> InHost, FMcpServerOptions InOptions, FSend InSend)
	: Host(std::move(InHost))
	, Options(std::move(InOptions))
	, Send(std::move(InSend))
	, Tools(Host->GetTools())
{
}

void FMcpServer::HandleLine(std::string_view Line)
{
	try
	{
		if (!IsBlank(Line))
			HandleMessage(ReadMcpMessage(Line));
	}
	catch (const std::exception& Failure)
	{
		Refuse({}, EMcpErrorCode::InternalError, DescribeFailure(Failure));
	}
}

void FMcpServer::HandleMessage(FMcpMessage Message)
{
	switch (Message.Kind)
	{
		case EMcpMessage::Request:
			return HandleRequest(std::move(Message));
		case EMcpMessage::Notification:
			return HandleNotification(Message);
		case EMcpMessage::Refused:
			return Refuse(Message.Id, Message.Error);
		case EMcpMessage::Response:
			return;
	}
}

void FMcpServer::HandleOverlongLine()
{
	Refuse({}, EMcpErrorCode::InvalidRequest, "the message is longer than 4 MiB and was skipped");
}

void FMcpServer::HandleRequest(FMcpMessage Message)
{
	if (IsIdInUse(Message.Id)) // an answer under this id would be taken for the open call's
		return Refuse({}, EMcpErrorCode::InvalidRequest, "the id belongs to a call that is still open");

	FRequest Request{.Message = std::move(Message)};
	FMcpError Error;
	if (!McpEra::Resolve(Request.Message, Request.Era, Error))
		return Refuse(Request.Message.Id, Error);
	for (const FMethod& Method : Methods)
	{
		if (Request.Message.Method.View() != Method.Name)
			continue;
		if (Request.Era == EMcpEra::Legacy && (Method.bNeedsEnvelope || (Method.bNeedsHandshake && !bShookHands)))
			return Refuse(Request.Message.Id, McpEra::MakeMissingEnvelopeError());
		return Handle(Method, Request);
	}
	Refuse(Request.Message.Id, EMcpErrorCode::MethodNotFound, FString("unknown method: ") + Abbreviate(Request.Message.Method));
}

/** A request that fails is refused by its id, so that its sender does not wait. */
void FMcpServer::Handle(const FMethod& Method, const FRequest& Request)
{
	try
	{
		(this->*Method.Handle)(Request);
	}
	catch (const std::exception& Failure)
	{
		CancelCall(Request.Message.Id);
		Refuse(Request.Message.Id, EMcpErrorCode::InternalError, DescribeFailure(Failure));
	}
}

void FMcpServer::HandleNotification(const FMcpMessage& Message)
{
	if (Message.Method.View() == "notifications/initialized")
		bInitialized = true;
	if (Message.Method.View() != "notifications/cancelled" || !Message.Params)
		return;
	if (const FJsonValue* Id = Message.Params->FindField("requestId"))
		CancelCall(*Id);
}

void FMcpServer::Initialize(const FRequest& Request)
{
	FString Version;
	if (!AsJsonString(Request.Message.Params->FindField("protocolVersion"), Version))
		return Refuse(Request.Message.Id, EMcpErrorCode::InvalidParams, R"("protocolVersion" is missing or not a string)");
	bShookHands = true;
	const auto Result = McpEra::MakeResult(EMcpEra::Legacy);
	Result->SetStringField("protocolVersion", McpEra::NegotiateLegacyVersion(Version));
	Result->SetObjectField("capabilities", MakeCapabilities());
	Result->SetObjectField("serverInfo", McpEra::MakeServerInfo());
	Result->SetStringField("instructions", McpTools::MakeInstructions(Tools, Options.bFollowsFiles));
	Answer(Request, Result);
}

void FMcpServer::Ping(const FRequest& Request)
{
	Answer(Request, McpEra::MakeResult(Request.Era));
}

void FMcpServer::Discover(const FRequest& Request)
{
	const auto Result = McpEra::MakeResult(Request.Era);
	Result->SetArrayField("supportedVersions", McpEra::GetModernVersions());
	Result->SetObjectField("capabilities", MakeCapabilities());
	Result->SetStringField("instructions", McpTools::MakeInstructions(Tools, Options.bFollowsFiles));
	McpEra::AddCacheHints(Request.Era, *Result);
	Answer(Request, Result);
}

void FMcpServer::ListTools(const FRequest& Request)
{
	if (!IsUsableCursor(Request.Message.Params->FindField("cursor")))
		return Refuse(Request.Message.Id, EMcpErrorCode::InvalidParams, "unknown cursor: the list of tools is one page");
	const auto Result = McpEra::MakeResult(Request.Era);
	Result->SetArrayField("tools", McpTools::MakeList(Tools));
	McpEra::AddCacheHints(Request.Era, *Result);
	Answer(Request, Result);
}

void FMcpServer::CallTool(const FRequest& Request)
{
	FString Name;
	AsJsonString(Request.Message.Params->FindField("name"), Name);
	const FMcpTool* Tool = McpTools::Find(Tools, Name);
	if (!Tool)
		return Refuse(Request.Message.Id, EMcpErrorCode::InvalidParams,
			FString("unknown tool: ") + Abbreviate(Name) + "; tools: " + McpTools::ListNames(Tools));

	const FJsonValue Arguments = ReadArguments(*Request.Message.Params);
	const bool bFull = IsFull();
	const FMcpCallNumber Number = OpenCall(Request, *Tool, Arguments);
	if (bFull)
		return FailCall(Number, *Tool, "Too many calls are open at a time; wait for answers before you call again");
	Host->StartCall(Number, Tool->Name, Json::Write(Arguments),
		[WeakThis = weak_from_this(), Number](const Orivane::FToolResult& Result)
		{
			if (const auto This = WeakThis.lock())
				This->AnswerCall(Number, Result);
		});
}

bool FMcpServer::IsIdInUse(const FJsonValue& Id) const
{
	std::lock_guard Guard(Lock);
	return FindCall(Id) != OpenCalls.end();
}

FMcpServer::FOpenCalls::const_iterator FMcpServer::FindCall(const FJsonValue& Id) const
{
	const std::string IdText = Json::Write(Id).ToStdString();
	return std::find_if(OpenCalls.begin(), OpenCalls.end(), [&](const auto& Call) { return Call.second.IdText == IdText; });
}

bool FMcpServer::IsFull() const
{
	std::lock_guard Guard(Lock);
	return OpenCalls.size() >= MaxOpenCalls;
}

FMcpCallNumber FMcpServer::OpenCall(const FRequest& Request, const FMcpTool& Tool, const FJsonValue& Arguments)
{
	FOpenCall Call;
	Call.Form = {
		.Id = Request.Message.Id, .Era = Request.Era, .Tool = &Tool, .MaxBytes = Options.MaxAnswerBytes, .ErrorAdvice = {}};
	if (McpTools::LacksRequiredArgument(Tool, Arguments))
		Call.Form.ErrorAdvice = McpTools::DescribeArguments(Tool);
	Call.IdText = Json::Write(Request.Message.Id).ToStdString();
	Call.ProgressToken = ReadProgressToken(Request.Message);
	const FMcpTime Now = Options.Now();
	Call.Deadline = Now + Options.Deadline;
	Call.NextProgress = Now + ProgressTime;

	std::lock_guard Guard(Lock);
	OpenCalls.emplace(++LastNumber, std::move(Call));
	return LastNumber;
}

void FMcpServer::AnswerCall(FMcpCallNumber Number, const Orivane::FToolResult& Result)
{
	FMcpAnswerForm Form;
	{
		std::lock_guard Guard(Lock);
		const auto Found = OpenCalls.find(Number);
		if (Found == OpenCalls.end())
			return;
		Form = Found->second.Form;
	}
	std::string Line = WriteAnswer(Result, Form); // may take long; other lines go out meanwhile
	std::lock_guard Guard(Lock);
	if (OpenCalls.erase(Number) == 0)
		return;
	Send(std::move(Line));
	if (OpenCalls.empty())
		BecameIdle.notify_all();
}

void FMcpServer::FailCall(FMcpCallNumber Number, const FMcpTool& Tool, const FString& Error)
{
	AnswerCall(Number, MakeFailure(Tool, Error));
}

void FMcpServer::Tick()
{
	const FMcpTime Now = Options.Now();
	std::vector<FMcpCallNumber> Overdue;
	{
		std::lock_guard Guard(Lock);
		for (auto& [Number, Call] : OpenCalls)
		{
			if (Call.Deadline <= Now)
				Overdue.push_back(Number);
			else if (WantsProgress(Call) && Call.NextProgress <= Now)
				SendProgress(Number, Call);
		}
	}
	for (const FMcpCallNumber Number : Overdue)
		GiveUp(Number);
}

void FMcpServer::GiveUp(FMcpCallNumber Number)
{
	const FMcpTool* Tool = nullptr;
	{
		std::lock_guard Guard(Lock);
		if (const auto Found = OpenCalls.find(Number); Found != OpenCalls.end())
			Tool = Found->second.Form.Tool;
	}
	if (!Tool)
		return;
	const FString State = DescribeProgress(Host->GetCallProgress(Number));
	FailCall(Number, *Tool,
		Tool->Name + " gave up after " + DescribeSeconds(Options.Deadline) + " (" + State +
			"); call again later or ask for less");
	Host->CancelCall(Number);
}

void FMcpServer::CancelCall(const FJsonValue& RequestId)
{
	FMcpCallNumber Number = 0;
	{
		std::lock_guard Guard(Lock);
		const auto Found = FindCall(RequestId);
		if (Found == OpenCalls.end())
			return;
		Number = Found->first;
		OpenCalls.erase(Found);
		if (OpenCalls.empty())
			BecameIdle.notify_all();
	}
	Host->CancelCall(Number);
}

/** A legacy client is told nothing but answers until it has said that it is ready. */
bool FMcpServer::WantsProgress(const FOpenCall& Call) const
{
	return !Call.ProgressToken.IsNull() && (bInitialized || Call.Form.Era == EMcpEra::Modern);
}

/**
 * Never at the moment of the answer: clients lose a progress message that directly precedes it. The value is the number of things
 * done where they are counted and goes up by one a message otherwise; a message whose value would not rise is left out.
 */
void FMcpServer::SendProgress(FMcpCallNumber Number, FOpenCall& Call)
{
	Call.NextProgress = Options.Now() + ProgressTime;
	const FMcpCallProgress Progress = Host->GetCallProgress(Number);
	const int64 Value = Progress.NumTotal > 0 ? Progress.NumDone : Call.LastProgress + 1;
	if (Value <= Call.LastProgress)
		return;
	Call.LastProgress = Value;

	auto Params = MakeShared<FJsonObject>();
	Params->SetField("progressToken", Call.ProgressToken);
	Params->SetNumberField("progress", Value);
	if (Progress.NumTotal >= Value)
		Params->SetNumberField("total", Progress.NumTotal);
	Params->SetStringField("message", DescribeProgress(Progress));
	Send(WriteMcpNotification("notifications/progress", Params));
}

TOptional<FMcpTime> FMcpServer::GetNextTickTime() const
{
	std::lock_guard Guard(Lock);
	TOptional<FMcpTime> Next;
	for (const auto& [Number, Call] : OpenCalls)
	{
		const FMcpTime Time = WantsProgress(Call) ? std::min(Call.Deadline, Call.NextProgress) : Call.Deadline;
		Next = Next ? std::min(*Next, Time) : Time;
	}
	return Next;
}

bool FMcpServer::WaitUntilIdle(std::chrono::milliseconds Limit)
{
	std::unique_lock Guard(Lock);
	return BecameIdle.wait_for(Guard, Limit, [this] { return OpenCalls.empty(); });
}

TSharedPtr<FJsonObject> FMcpServer::MakeCapabilities() const
{
	auto Capabilities = MakeShared<FJsonObject>();
	Capabilities->SetObjectField("tools", MakeShared<FJsonObject>());
	return Capabilities;
}

void FMcpServer::Answer(const FRequest& Request, const TSharedPtr<FJsonObject>& Result)
{
	SendLine(WriteMcpResult(Request.Message.Id, Result));
}

void FMcpServer::Refuse(const FJsonValue& Id, const FMcpError& Error)
{
	SendLine(WriteMcpError(Id, Error));
}

void FMcpServer::Refuse(const FJsonValue& Id, int32 Code, const FString& Text)
{
	Refuse(Id, {.Code = Code, .Message = Text});
}

void FMcpServer::SendLine(std::string Line)
{
	std::lock_guard Guard(Lock);
	Send(std::move(Line));
}

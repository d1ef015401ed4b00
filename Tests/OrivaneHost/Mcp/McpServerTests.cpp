#include "Mcp/McpSession.h"
#include "Support/Cases.h"

#include <thread>

namespace
{
/** "-32601 null" for an error, the id's JSON for a result, nothing for silence. */
std::string Outline(const std::string& Answer)
{
	if (Answer.empty())
		return "";
	const auto Message = nlohmann::json::parse(Answer, nullptr, false);
	const std::string Id = Message.value("id", nlohmann::json()).dump();
	return Message.contains("error") ? std::to_string(Message["error"]["code"].get<int>()) + " " + Id : Id;
}

constexpr const char* ServerMeta =
	R"("resultType":"complete","_meta":{"io.modelcontextprotocol/serverInfo":{"name":"orivane","title":"Orivane","version":"0.1.0"}})";
constexpr const char* ToolList =
	R"("tools":[{"name":"find","title":"Find","description":"Finds.","inputSchema":{"type":"object","properties":{"term":{"type":"string","description":"Text."},"max_total_hits":{"type":"integer","description":"Cap."}},"required":["term"]},"outputSchema":{"type":"object"},"annotations":{"readOnlyHint":true,"idempotentHint":true,"openWorldHint":false}},{"name":"slow","description":"Takes long.","inputSchema":{"type":"object"}}])";
constexpr const char* FoundOne =
	R"("content":[{"type":"text","text":"{\"messages\":[{\"type\":\"success\",\"text\":\"Found 1\"}],\"content\":{\"assets\":[\"A\"],\"truncated\":false}}"}],"structuredContent":{"messages":[{"type":"success","text":"Found 1"}],"content":{"assets":["A"],"truncated":false}},"isError":false)";

std::string Result(const std::string& Id, const std::string& Members)
{
	return R"({"jsonrpc":"2.0","id":)" + Id + R"(,"result":{)" + Members + "}}";
}

std::string Progress(const std::string& Token, const std::string& Members)
{
	return R"({"jsonrpc":"2.0","method":"notifications/progress","params":{"progressToken":)" + Token + "," + Members + "}}";
}
}

TEST(McpServer, RefusesWhatIsNoRequestAndLives)
{
	const TCase<std::string, std::string> Cases[] = {
		{"half a message", R"({"jsonrpc":"2.0","id":1)", "-32700 null"},
		{"two messages in a line", R"({"jsonrpc":"2.0","id":1,"method":"ping"} {})", "-32700 null"},
		{"nested deeper than the limit", std::string(200, '['), "-32700 null"},
		{"an empty batch", "[]", "-32600 null"},
		{"no object", "\"ping\"", "-32600 null"},
		{"blank lines say nothing", " \t\r", ""},
		{"no version of JSON-RPC", R"({"id":1,"method":"ping"})", "-32600 1"},
		{"a version as a number", R"({"jsonrpc":2.0,"id":1,"method":"ping"})", "-32600 1"},
		{"no method", R"({"jsonrpc":"2.0","id":1})", "-32600 1"},
		{"a method that is no text", R"({"jsonrpc":"2.0","id":1,"method":7})", "-32600 1"},
		{"parameters by position", R"({"jsonrpc":"2.0","id":1,"method":"ping","params":[1]})", "-32602 1"},
		{"null is no id", R"({"jsonrpc":"2.0","id":null,"method":"ping"})", "-32600 null"},
		{"a fraction is no id", R"({"jsonrpc":"2.0","id":1.5,"method":"ping"})", "-32600 null"},
		{"an object is no id", R"({"jsonrpc":"2.0","id":{},"method":"ping"})", "-32600 null"},
		{"an id that would fill the answer", R"({"jsonrpc":"2.0","id":")" + std::string(5000, 'x') + R"(","method":"ping"})",
			"-32600 \"" + std::string(5000, 'x') + "\""},
		{"integer ids stay integers", R"({"jsonrpc":"2.0","id":-7,"method":"ping"})", "-7"},
		{"large ids keep their digits", R"({"jsonrpc":"2.0","id":9007199254740993,"method":"ping"})", "9007199254740993"},
		{"text ids stay texts", R"({"jsonrpc":"2.0","id":"7","method":"ping"})", "\"7\""},
		{"an empty text is an id", R"({"jsonrpc":"2.0","id":"","method":"ping"})", "\"\""},
		{"case matters", Legacy("1", "Ping"), "-32601 1"},
		{"not offered: resources", Legacy("1", "resources/list"), "-32601 1"},
		{"not offered: modern subscriptions", Modern("1", "subscriptions/listen"), "-32601 1"},
		{"a notification with an id is no request", Legacy("1", "notifications/initialized"), "-32601 1"},
		{"unknown notification", R"({"jsonrpc":"2.0","method":"notifications/nope"})", ""},
		{"notification with bad parameters", R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":[1]})", ""},
		{"a request without id is a notification and runs nothing",
			R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"find"}})", ""},
		{"an answer to nothing", R"({"jsonrpc":"2.0","id":1,"result":{}})", ""},
		{"broken UTF-8 in a text", "{\"jsonrpc\":\"2.0\",\"id\":\"\xFF\",\"method\":\"ping\"}", "\"\xEF\xBF\xBD\""},
	};
	FMcpSession Session;
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(Outline(Session.Say(Case.Given)), Case.Expected);
		EXPECT_EQ(Outline(Session.Say(Legacy("99", "ping"))), "99");
	}
	EXPECT_TRUE(Session.Host->Calls.empty());
	Session.Server->HandleOverlongLine();
	EXPECT_EQ(Outline(Session.TakeSent()), "-32600 null");
}

TEST(McpServer, AgreesOnALegacyVersion)
{
	const TCase<> Cases[] = {
		{"newest", "2025-11-25", "2025-11-25"},
		{"older", "2025-06-18", "2025-06-18"},
		{"with batches, which are refused all the same", "2025-03-26", "2025-03-26"},
		{"oldest", "2024-11-05", "2024-11-05"},
		{"from the future", "2099-01-01", "2025-11-25"},
		{"the modern one has no handshake", "2026-07-28", "2025-11-25"},
		{"no version at all", "", "2025-11-25"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FMcpSession Session;
		const std::string Params = R"({"protocolVersion":")" + std::string(Case.Given) + R"(","capabilities":{}})";
		const auto Answer = nlohmann::json::parse(Session.Say(Legacy("1", "initialize", Params)))["result"];
		EXPECT_EQ(Answer["protocolVersion"], Case.Expected);
		EXPECT_EQ(Answer["capabilities"].dump(), R"({"tools":{}})");
		EXPECT_EQ(Answer["serverInfo"]["name"], "orivane");
		EXPECT_TRUE(Answer.contains("instructions"));
		EXPECT_FALSE(Answer.contains("resultType"));
	}
	FMcpSession Session;
	EXPECT_EQ(Outline(Session.Say(Legacy("1", "initialize"))), "-32602 1") << "a handshake without a version";
	EXPECT_EQ(Outline(Session.Say(Legacy("2", "tools/list"))), "-32602 2") << "and so none has taken place";
}

TEST(McpServer, SpeaksLegacy)
{
	const TCase<std::string, std::string> Cases[] = {
		{"ping", Legacy("1", "ping"), R"({"jsonrpc":"2.0","id":1,"result":{}})"},
		{"tools", Legacy("2", "tools/list"), Result("2", ToolList)},
		{"tools, from the empty cursor on", Legacy("3", "tools/list", R"({"cursor":""})"), Result("3", ToolList)},
		{"tools, without parameters", R"({"jsonrpc":"2.0","id":4,"method":"tools/list"})", Result("4", ToolList)},
		{"a cursor that was never handed out", Legacy("5", "tools/list", R"({"cursor":"2"})"),
			R"({"jsonrpc":"2.0","id":5,"error":{"code":-32602,"message":"unknown cursor: the list of tools is one page"}})"},
		{"a call", Legacy("\"6\"", "tools/call", R"({"name":"find","arguments":{"term":"x"}})"), Result("\"6\"", FoundOne)},
		{"metadata that is not the modern envelope",
			Legacy("7", "tools/call", R"({"name":"find","arguments":{"term":"x"},"_meta":{"trace":1}})"), Result("7", FoundOne)},
		{"an unknown tool", Legacy("8", "tools/call", R"({"name":"FIND"})"),
			R"({"jsonrpc":"2.0","id":8,"error":{"code":-32602,"message":"unknown tool: FIND; tools: find, slow"}})"},
		{"no tool", Legacy("9", "tools/call", R"({"name":7})"),
			R"({"jsonrpc":"2.0","id":9,"error":{"code":-32602,"message":"unknown tool: ; tools: find, slow"}})"},
	};
	FMcpSession Session;
	Session.ShakeHands();
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Session.Say(Case.Given), Case.Expected);
}

TEST(McpServer, SpeaksModern)
{
	const std::string Cached = R"(,"ttlMs":300000,"cacheScope":"public")";
	const TCase<std::string, std::string> Cases[] = {
		{"tools", Modern("1", "tools/list"), Result("1", ServerMeta + std::string(",") + ToolList + Cached)},
		{"a call", Modern("2", "tools/call", R"("name":"find","arguments":{"term":"x"})"),
			Result("2", ServerMeta + std::string(",") + FoundOne)},
		{"ping", Modern("3", "ping"), Result("3", ServerMeta)},
		{"an unknown version",
			Legacy("4", "tools/list",
				R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"1900-01-01","io.modelcontextprotocol/clientCapabilities":{}}})"),
			R"({"jsonrpc":"2.0","id":4,"error":{"code":-32022,"message":"protocol version 1900-01-01 is not supported","data":{"supported":["2026-07-28"],"requested":"1900-01-01"}}})"},
		{"a version that asks for a handshake",
			Legacy("5", "server/discover",
				R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2025-11-25","io.modelcontextprotocol/clientCapabilities":{}}})"),
			R"({"jsonrpc":"2.0","id":5,"error":{"code":-32022,"message":"protocol version 2025-11-25 is not supported","data":{"supported":["2026-07-28"],"requested":"2025-11-25"}}})"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FMcpSession Session; // each is the first message of its pipe
		EXPECT_EQ(Session.Say(Case.Given), Case.Expected);
	}

	const char* Incomplete[] = {
		R"({})",
		R"({"_meta":{}})",
		R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28"}})",
		R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28","io.modelcontextprotocol/clientCapabilities":null}})",
		R"({"_meta":{"io.modelcontextprotocol/protocolVersion":20260728,"io.modelcontextprotocol/clientCapabilities":{}}})",
		R"({"_meta":{"io.modelcontextprotocol/clientCapabilities":{}}})",
	};
	for (const char* Params : Incomplete)
	{
		SCOPED_TRACE(Params);
		FMcpSession Session;
		EXPECT_EQ(Outline(Session.Say(Legacy("1", "tools/list", Params))), "-32602 1");
		EXPECT_EQ(Outline(Session.Say(Legacy("2", "server/discover", Params))), "-32602 2");
	}
}

TEST(McpServer, Discovers)
{
	FMcpSession Session;
	const auto Answer = nlohmann::json::parse(Session.Say(Modern("1", "server/discover")))["result"];
	EXPECT_EQ(Answer["supportedVersions"].dump(), R"(["2026-07-28"])");
	EXPECT_EQ(Answer["capabilities"].dump(), R"({"tools":{}})");
	EXPECT_EQ(Answer["resultType"], "complete");
	EXPECT_GE(Answer["ttlMs"].get<int>(), 0);
	EXPECT_EQ(Answer["cacheScope"], "public");
}

TEST(McpServer, ServesBothErasOnOnePipe)
{
	FMcpSession Session;
	const std::string ModernList = Session.Say(Modern("1", "tools/list"));
	EXPECT_EQ(Outline(Session.Say(Legacy("1", "tools/list"))), "-32602 1") << "a modern request is no handshake";
	Session.ShakeHands();
	EXPECT_EQ(Session.Say(Modern("1", "tools/list")), ModernList) << "and a handshake means nothing to modern requests";
	EXPECT_EQ(Session.Say(Legacy("1", "tools/list")), Result("1", ToolList));
	EXPECT_EQ(Outline(Session.Say(Legacy("1", "server/discover"))), "-32602 1") << "there is no legacy form of it";

	Session.Say(Legacy("1", "tools/call", R"({"name":"slow"})"));
	Session.Say(Modern("2", "tools/call", R"("name":"slow")"));
	Session.Host->Calls[1].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), Result("2", ServerMeta + std::string(",") + FoundOne));
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), Result("1", FoundOne));
}

TEST(McpServer, HandsArgumentsToTheToolAsTheyAre)
{
	const TCase<> Cases[] = {
		{"missing", R"({"name":"slow"})", "{}"},
		{"null", R"({"name":"slow","arguments":null})", "{}"},
		{"empty", R"({"name":"slow","arguments":{}})", "{}"},
		{"order and kinds are kept", R"({"name":"slow","arguments":{"z":"10","a":1.5,"b":[true,null]}})",
			R"({"z":"10","a":1.5,"b":[true,null]})"},
		{"a list is the tool's to refuse", R"({"name":"slow","arguments":[1]})", "[1]"},
		{"a text too", R"({"name":"slow","arguments":"x"})", "\"x\""},
	};
	FMcpSession Session;
	Session.ShakeHands();
	int Id = 0;
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(Session.Say(Legacy(std::to_string(++Id), "tools/call", Case.Given)), "");
		ASSERT_FALSE(Session.Host->Calls.empty());
		EXPECT_EQ(Session.Host->Calls.back().ArgumentsJson.ToStdString(), Case.Expected);
	}
}

TEST(McpServer, ReportsErrorsInTheTextBlock)
{
	FMcpSession Session;
	Session.ShakeHands();
	Session.Host->Errors = {"First", "Second"};
	EXPECT_EQ(Session.Say(Legacy("1", "tools/call", R"({"name":"find","arguments":{"term":"x"}})")),
		Result("1",
			R"("content":[{"type":"text","text":"First\nSecond"}],"structuredContent":{"messages":[{"type":"error","text":"First"},{"type":"error","text":"Second"}]},"isError":true)"));

	const char* WithoutTerm[] = {
		R"({"name":"find"})", R"({"name":"find","arguments":{"term":null}})", R"({"name":"find","arguments":[]})"};
	for (const char* Params : WithoutTerm)
	{
		SCOPED_TRACE(Params);
		const auto Answer = nlohmann::json::parse(Session.Say(Legacy("2", "tools/call", Params)))["result"];
		EXPECT_EQ(Answer["content"][0]["text"], "First\nSecond\nfind takes a JSON object with: term (required), max_total_hits");
		EXPECT_EQ(Answer["structuredContent"]["messages"].size(), 2U) << "advice is no message of the tool";
	}
}

TEST(McpServer, CancelsCalls)
{
	const auto Cancel = [](const std::string& Id)
	{ return R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":)" + Id + R"(,"reason":"user"}})"; };
	FMcpSession Session;
	Session.ShakeHands();
	Session.Say(Legacy("1", "tools/call", R"({"name":"slow"})"));
	Session.Say(Legacy("\"1\"", "tools/call", R"({"name":"slow"})"));
	EXPECT_EQ(Outline(Session.Say(Legacy("1", "ping"))), "-32600 null") << "the id belongs to a call";

	for (const char* Unknown : {"2", "\"2\"", "null", "1.5", "[1]"})
		EXPECT_EQ(Session.Say(Cancel(Unknown)), "") << Unknown;
	EXPECT_TRUE(Session.Host->Cancelled.empty());

	EXPECT_EQ(Session.Say(Cancel("1")), "");
	EXPECT_EQ(Session.Say(Cancel("1")), "") << "twice";
	ASSERT_EQ(Session.Host->Cancelled, std::vector{Session.Host->Calls[0].Number});
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), "") << "a cancelled call is not answered";

	Session.Host->Calls[1].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Outline(Session.TakeSent()), "\"1\"") << "a text that looks like the number is another id";
	Session.Host->Calls[1].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), "") << "answered once";
	EXPECT_EQ(Session.Say(Cancel("\"1\"")), "") << "finished";
	EXPECT_EQ(Outline(Session.Say(Legacy("1", "tools/call", R"({"name":"find","arguments":{"term":"x"}})"))), "1")
		<< "later calls are fine";
}

TEST(McpServer, GivesUpAtTheDeadline)
{
	FMcpSession Session({.Deadline = std::chrono::milliseconds(1500)});
	Session.ShakeHands();
	EXPECT_FALSE(Session.Server->GetNextTickTime());
	Session.Say(Legacy("1", "tools/call", R"({"name":"slow"})"));
	EXPECT_EQ(Session.Server->GetNextTickTime(), Session.Now + std::chrono::milliseconds(1500));
	EXPECT_EQ(Session.Wait(std::chrono::milliseconds(1499)), "");
	Session.Host->Progress = {.Text = "opening", .NumDone = 3, .NumTotal = 10};

	const auto Answer = nlohmann::json::parse(Session.Wait(std::chrono::milliseconds(1)))["result"];
	EXPECT_EQ(Answer["isError"], true);
	EXPECT_EQ(Answer["content"][0]["text"], "slow gave up after 2 s (opening, 3 of 10); call again later or ask for less");
	EXPECT_EQ(Session.Host->Cancelled.size(), 1U);
	EXPECT_FALSE(Session.Server->GetNextTickTime());
	EXPECT_TRUE(Session.Server->WaitUntilIdle(std::chrono::milliseconds(0)));

	EXPECT_EQ(Outline(Session.Say(Legacy("1", "tools/call", R"({"name":"find","arguments":{"term":"x"}})"))), "1")
		<< "the next call works";
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), "") << "a late answer is not heard";
}

TEST(McpServer, ReportsProgress)
{
	constexpr auto Step = std::chrono::seconds(2);
	FMcpSession Session;
	Session.ShakeHands();
	Session.Say(Legacy("1", "tools/call", R"({"name":"slow","_meta":{"progressToken":"t"}})"));
	Session.Say(Legacy("2", "tools/call", R"({"name":"slow"})"));
	const auto Counts = [&](int64 NumDone, int64 NumTotal)
	{ Session.Host->Progress = {.Text = "working", .NumDone = NumDone, .NumTotal = NumTotal}; };

	EXPECT_EQ(Session.Wait(Step / 2), "") << "quick calls report nothing";
	EXPECT_EQ(Session.Wait(Step / 2), Progress("\"t\"", R"("progress":1,"message":"working")")) << "one call has a token";
	Counts(1, 10);
	EXPECT_EQ(Session.Wait(Step), "") << "not risen";
	Counts(4, 10);
	EXPECT_EQ(Session.Wait(Step), Progress("\"t\"", R"("progress":4,"total":10,"message":"working, 4 of 10")"));
	Counts(0, 0);
	EXPECT_EQ(Session.Wait(Step), Progress("\"t\"", R"("progress":5,"message":"working")"))
		<< "goes on rising where nothing is counted";
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Outline(Session.TakeSent()), "1") << "none directly before the answer";
	EXPECT_EQ(Session.Wait(Step), "") << "none after it";
}

TEST(McpServer, ReportsProgressOnlyToThoseWhoCanUseIt)
{
	constexpr auto Step = std::chrono::seconds(2);
	const TCase<const char*, bool> Cases[] = {
		{"integer", "7", true},
		{"zero", "0", true},
		{"empty text", "\"\"", true},
		{"null", "null", false},
		{"fraction", "1.5", false},
		{"object", "{}", false},
	};
	for (const auto& Case : Traced(Cases))
	{
		FMcpSession Session;
		Session.ShakeHands();
		Session.Say(Legacy("1", "tools/call", R"({"name":"slow","_meta":{"progressToken":)" + std::string(Case.Given) + "}}"));
		EXPECT_EQ(Session.Wait(Step), Case.Expected ? Progress(Case.Given, R"("progress":1,"message":"working")") : "");
	}

	FMcpSession Session;
	Session.Say(Legacy("0", "initialize", R"({"protocolVersion":"2025-11-25"})"));
	Session.Say(Legacy("1", "tools/call", R"({"name":"slow","_meta":{"progressToken":1}})"));
	EXPECT_EQ(Session.Wait(Step), "") << "a client that is not ready hears nothing but answers";
	Session.Say(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
	EXPECT_NE(Session.Wait(Step), "");
}

TEST(McpServer, RefusesCallsBeyondTheLimit)
{
	FMcpSession Session;
	Session.ShakeHands();
	for (int Id = 1; Id <= 1024; ++Id)
		ASSERT_EQ(Session.Say(Legacy(std::to_string(Id), "tools/call", R"({"name":"slow"})")), "");
	EXPECT_NE(Session.Say(Legacy("2000", "tools/call", R"({"name":"slow"})")).find("\"isError\":true"), std::string::npos);
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	Session.TakeSent();
	EXPECT_EQ(Session.Say(Legacy("2000", "tools/call", R"({"name":"slow"})")), "") << "there is room again";
}

TEST(McpServer, TakesAnswersFromAnyThread)
{
	constexpr int NumCalls = 64;
	FMcpSession Session;
	Session.ShakeHands();
	for (int Id = 0; Id < NumCalls; ++Id)
		Session.Say(Legacy(std::to_string(Id), "tools/call", R"({"name":"slow"})"));
	{
		const Orivane::FToolResult Found = Session.Host->MakeResult();
		std::vector<std::jthread> Threads;
		for (int First = 0; First < 4; ++First)
			Threads.emplace_back(
				[&, First]
				{
					for (int Id = First; Id < NumCalls; Id += 4)
						Session.Host->Calls[static_cast<std::size_t>(Id)].OnAnswer(Found);
				});
		for (int Id = 0; Id < NumCalls; ++Id)
			Session.Server->HandleLine(Legacy(std::to_string(1000 + Id), "ping"));
	}
	EXPECT_TRUE(Session.Server->WaitUntilIdle(std::chrono::seconds(0)));
	std::vector<int> Ids;
	for (const std::string& Line : Session.Sent)
		Ids.push_back(nlohmann::json::parse(Line)["id"].get<int>());
	std::sort(Ids.begin(), Ids.end());
	ASSERT_EQ(Ids.size(), 2U * NumCalls);
	for (int Id = 0; Id < NumCalls; ++Id)
	{
		EXPECT_EQ(Ids[static_cast<std::size_t>(Id)], Id);
		EXPECT_EQ(Ids[static_cast<std::size_t>(NumCalls + Id)], 1000 + Id);
	}
}

TEST(McpServer, ToolsMayOutliveIt)
{
	FMcpSession Session;
	Session.ShakeHands();
	Session.Say(Legacy("1", "tools/call", R"({"name":"slow"})"));
	Session.Server.reset();
	Session.Host->Calls[0].OnAnswer(Session.Host->MakeResult());
	EXPECT_EQ(Session.TakeSent(), "");
}

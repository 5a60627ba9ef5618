#include "lib_sharing.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// There are users who don't sync and users of directories; Photos is shared with ben, who hasn't answered.
class LibPeople : public LibSharing {
protected:
    LibPeople()
        : LibSharing({"--user",           "dora & day:fourth",
                      "--no-sync-for",    "dora & day",
                      "--description",    "carl:Carl der Große 書類",
                      "--directory",      "PINE:pine.example.test",
                      "--directory",      "OAK:oak.example.test",
                      "--directory-user", "PINE:erik",
                      "--directory-user", "PINE:fay",
                      "--directory-user", "OAK:gus",
                      "--description",    "PINE\\erik:Erik of the woods",
                      "--user",           "PINE\\fay:sixth"}) {}

    Members members() const {
        Members question;
        question.share = the(client, kOwned);
        return question;
    }
    std::vector<std::string> namesIn(Members question) const {
        EXPECT_EQ(ask(client, question), kDone);
        return namesOf(question.members);
    }
    std::vector<std::string> namesIn(Users question) const {
        EXPECT_EQ(ask(client, question), kDone);
        return namesOf(question.users);
    }
    /// The member of that name, as the owner sees it.
    Member member(const std::string& name) const {
        Members question = members();
        EXPECT_EQ(ask(client, question), kDone);
        for (const Member& member : question.members) {
            if (member.name == name) return member;
        }
        ADD_FAILURE() << "no member " << name;
        return {};
    }
    /// Changes members by the names and events that their list has.
    bool change(std::vector<MemberChange> changes) const {
        for (MemberChange& change : changes) change.event = member(utf8(change.name)).event;
        std::wstring pid;
        EXPECT_EQ(setMembers(client, the(client, kOwned), changes, pid), kDone);
        return finishes(client, pid);
    }
};

template <class Question>
Question ofDomain(Question question, const wchar_t* netbios, const wchar_t* domain) {
    question.type = 2;
    question.netbios = netbios;
    question.domain = domain;
    return question;
}

}  // namespace

TEST_P(LibPeople, UsersAreListedWithWhatTheServerSaysOfThem) {
    EXPECT_EQ(setPolicy(ben, 2), kDone);
    Users question;
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_EQ(question.total, 4u);
    ASSERT_THAT(namesOf(question.users), ElementsAre("anna", "ben", "carl", "dora & day"));
    EXPECT_EQ(question.users[0].policy, "0");
    EXPECT_EQ(question.users[1].policy, "2");
    EXPECT_FALSE(question.users[1].hasDescription);
    EXPECT_EQ(question.users[2].description, "Carl der Große 書類");
    EXPECT_EQ(question.users[2].syncs, 1);
    EXPECT_EQ(question.users[3].syncs, 0);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibPeople, UsersAreAskedForByFilterPageAndWhetherTheySync) {
    Users some;
    some.filter = L"DORA &";
    EXPECT_THAT(namesIn(some), ElementsAre("dora & day"));
    Users syncing;
    syncing.all = false;
    syncing.refresh = true;
    EXPECT_THAT(namesIn(syncing), ElementsAre("anna", "ben", "carl"));
    Users page;
    std::vector<std::string> all;
    for (page.upper = 3; page.lower < 4; page.lower = page.upper, page.upper += 3) {
        EXPECT_EQ(ask(client, page), kDone);
        EXPECT_EQ(page.total, 4u);
        for (const User& user : page.users) all.push_back(user.name);
    }
    EXPECT_THAT(all, ElementsAre("anna", "ben", "carl", "dora & day"));
    Users few;
    few.capacity = 3;
    EXPECT_EQ(ask(client, few), (Numbers{0, 122}));
    EXPECT_EQ(few.total, 4u);
    EXPECT_EQ(few.count, 0u);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    nas.forgetRequests();
    Users wrong;
    wrong.type = 3;
    EXPECT_EQ(ask(client, wrong), (Numbers{0, 87}));
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibPeople, DirectoriesHaveUsersOfTheirOwn) {
    std::vector<std::string> list;
    std::uint32_t count = 0;
    EXPECT_EQ(domains(client, list, count), kDone);
    EXPECT_THAT(list, ElementsAre("PINE: pine.example.test", "OAK: oak.example.test"));
    EXPECT_EQ(domains(client, list, count, 1), (Numbers{0, 122}));
    EXPECT_EQ(count, 2u);
    Users pine = ofDomain(Users(), L"PINE", L"pine.example.test");
    EXPECT_EQ(ask(client, pine), kDone);
    ASSERT_THAT(namesOf(pine.users), ElementsAre("PINE\\erik", "PINE\\fay"));
    EXPECT_EQ(pine.users[0].description, "Erik of the woods");
    EXPECT_EQ(pine.users[0].syncs, 0);
    EXPECT_EQ(pine.users[1].syncs, 1);
    EXPECT_THAT(namesIn(ofDomain(Users(), L"OAK", L"oak.example.test")), ElementsAre("OAK\\gus"));
    // A domain that isn't there looks like one without users.
    EXPECT_THAT(namesIn(ofDomain(Users(), L"ELM", L"elm.example.test")), IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibPeople, AServerWithoutADirectoryHasNoDomains) {
    Nas plain;
    const Client anna(plain, GetParam());
    std::vector<std::string> list;
    std::uint32_t count = 7;
    EXPECT_EQ(domains(anna, list, count), kDone);
    EXPECT_EQ(count, 0u);
}

TEST_P(LibPeople, MembersAreListedAmongThoseWhoCouldBeSome) {
    share({L"ben"});
    Members all = members();
    EXPECT_EQ(ask(client, all), kDone);
    EXPECT_EQ(all.total, 3u);
    ASSERT_THAT(namesOf(all.members), ElementsAre("ben", "carl", "dora & day"));
    EXPECT_EQ(all.members[0].isMember, 1);
    EXPECT_EQ(all.members[0].status, kWaits);
    EXPECT_NE(all.members[0].event, 0u);
    EXPECT_TRUE(all.members[0].hasDescription);
    EXPECT_EQ(all.members[0].description, "");
    EXPECT_EQ(all.members[1].isMember, 0);
    EXPECT_EQ(all.members[1].event, 0u);
    EXPECT_EQ(all.members[1].description, "Carl der Große 書類");
    EXPECT_EQ(all.members[2].syncs, 0);
    accept();
    EXPECT_EQ(member("ben").status, kAccepted);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibPeople, MembersAreAskedForByFilterPageAndMembership) {
    share({L"ben"});
    Members some = members();
    some.filter = L"A & d";
    EXPECT_THAT(namesIn(some), ElementsAre("dora & day"));
    Members only = members();
    only.onlyMembers = true;
    only.refresh = true;
    EXPECT_THAT(namesIn(only), ElementsAre("ben"));
    Members syncing = members();
    syncing.all = false;
    EXPECT_THAT(namesIn(syncing), ElementsAre("ben", "carl"));
    EXPECT_THAT(namesIn(ofDomain(members(), L"PINE", L"pine.example.test")),
                ElementsAre("PINE\\erik", "PINE\\fay"));
    Members page = members();
    page.lower = 1;
    page.upper = 3;
    EXPECT_EQ(ask(client, page), kDone);
    EXPECT_EQ(page.total, 3u);
    EXPECT_THAT(namesOf(page.members), ElementsAre("carl", "dora & day"));
    page.capacity = 1;
    EXPECT_EQ(ask(client, page), (Numbers{0, 122}));
    EXPECT_EQ(page.total, 3u);
    EXPECT_EQ(page.count, 0u);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    nas.forgetRequests();
    page.lower = page.upper;
    EXPECT_EQ(ask(client, page), (Numbers{8, 0xABCD}));
    page.lower = 0;
    page.type = 3;
    EXPECT_EQ(ask(client, page), (Numbers{0, 87}));
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibPeople, OnlyTheOwnerAsksForMembersAndChangesThem) {
    share({L"ben"});
    Members question = members();
    EXPECT_EQ(ask(ben, question), (Numbers{0, -1}));
    std::wstring pid;
    EXPECT_EQ(setMembers(ben, question.share, {{L"carl", 2, 0}}, pid), (Numbers{0, -1}));
    EXPECT_EQ(setMembers(client, question.share, {{L"carl", 2, 0}, {L"nobody", 2, 0}}, pid),
              (Numbers{0, -1}));
    EXPECT_EQ(pid, L"");
    EXPECT_THAT(names(carl, kInvited), IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibPeople, MembersComeGoAndLearnToWrite) {
    shareWithBen();
    EXPECT_TRUE(change({{L"ben", 1}, {L"carl", 2}, {L"dora & day", 2}}));
    EXPECT_THAT(names(carl, kInvited), ElementsAre("Photos"));
    EXPECT_EQ(reach(), kDone);
    EXPECT_FALSE(device.upload({"x", shownPath() + L"/x"}) == kDone);
    EXPECT_FALSE(std::filesystem::exists(onDisk("Photos/x")));
    EXPECT_TRUE(change({{L"ben", 2}, {L"dora & day", 0}}));
    EXPECT_EQ(device.upload({"x", shownPath() + L"/x"}), kDone);
    Members only = members();
    only.onlyMembers = true;
    EXPECT_THAT(namesIn(only), ElementsAre("ben", "carl"));
    EXPECT_TRUE(change({{L"ben", 0}}));
    EXPECT_EQ(reach(), (Numbers{0, 5}));
    EXPECT_THAT(namesIn(only), ElementsAre("carl"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

E2E_ON_ALL_ROADS(LibPeople);

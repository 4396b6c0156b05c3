// Protection: permissions, encryption, and what saving does to it.
#include "base/Reflection.h"
#include "engine/DocumentFixture.h"

namespace {

using THandler = TPDFPasswordSecurityHandler;

struct TSecurityCase : TDocumentTest {
    /// As the script document encrypts.
    void Encrypt(quint32 cipher, int bits, const NarrowString& owner, const NarrowString& user) {
        auto* handler = new THandler(nullptr);
        Document.SetSecurityHandler(handler);
        handler->StreamCipher = handler->StringCipher = cipher;
        handler->SetStreamEncryptionKeyBits(bits);
        handler->SetStringEncryptionKeyBits(bits);
        Document.SetUserPassword(user);
        Document.SetOwnerPassword(owner);
        TPDFDocPermissions allowed;
        allowed.FPrint = false;
        allowed.FCopy = false;
        handler->Permissions()->Load(&allowed);
        handler->SetOwnerPassword(Widen(Document.OwnerPassword()));
        handler->SetUserPassword(Widen(Document.UserPassword()));
        Document.Encrypt();
    }
    [[nodiscard]] QString ShowEncryption(const string& password) const {
        return QString::fromUtf8(
            RunProgram("qpdf", {QStringLiteral("--password=") + password, "--show-encryption", Out}).Out);
    }
};

TEST_F(TSecurityCase, AnUnchosenCipherMakesSavingRaiseAndWritesNothing) {
    MakePdf(In, 1);
    Document.OpenFromFile(In, {});
    for (const auto& [cipher, bits] : {std::pair(THandler::CipherNone, 0), std::pair(THandler::CipherRC4, 0),
                                       std::pair(quint32(0x1234), 128)}) {
        Encrypt(cipher, bits, "own", "open");
        EXPECT_THROW(Save(), EPDFError);
        EXPECT_EQ(Files.Names(), QStringList{"in.pdf"});
    }
    Encrypt(THandler::CipherRC4, 128, "own", "日本"); // not encodable before 256 bits
    EXPECT_THROW(Save(), EPDFError);
    EXPECT_EQ(Files.Names(), QStringList{"in.pdf"});
}

TEST_F(TSecurityCase, LongAndUnusualPasswordsOpenForOthersToo) {
    const QString letters = QString(u'a').repeated(500);
    const QString accents = QStringLiteral("é").repeated(100); // byte 127 is the first half of one
    struct {
        QString Given;
        QString Typed; // in another program
    } const cases[] = {
        {letters.left(126), letters.left(126)},
        {letters.left(127), letters.left(127)},
        {letters.left(128), letters.left(128)},
        {letters, letters},
        {accents, accents},
        {"a\u00A0\uFB01x\u00AD", "a fix"},
        {"\U0001F600", "\U0001F600"}, // newer than the standard's characters
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Typed.toStdString());
        MakePdf(In, 1);
        Document.OpenFromFile(In, {});
        Encrypt(THandler::CipherAES256, 0, c.Given.toUtf8(), c.Given.toUtf8());
        Document.SaveToPath(Out, /*keepSource*/ false, false); // and opens what it wrote
        EXPECT_EQ(QpdfCheck(Out, {QStringLiteral("--password=") + c.Typed}), 0);
        const auto mupdf = RunProgram("mutool", {"show", "-p", c.Typed, Out, "pages/1"});
        EXPECT_EQ(mupdf.Exit, 0) << mupdf.Errors.toStdString();
        if (c.Typed.size() <= 32) { // pdftotext itself cuts
            EXPECT_EQ(PageTexts(Out, {"-upw", c.Typed}), QStringList{"Page 1"});
        }
    }
}

TEST_F(TSecurityCase, PasswordsThatTheStandardForbidsAreRefused) {
    MakePdf(In, 1);
    Document.OpenFromFile(In, {});
    for (const char* password : {"bell\x07", "\u05D0b", "\u00AD"}) {
        Encrypt(THandler::CipherAES256, 0, "own", password);
        EXPECT_THROW(Save(), EPDFError) << password;
        Encrypt(THandler::CipherAES256, 0, password, "open");
        EXPECT_THROW(Save(), EPDFError) << password;
    }
    EXPECT_EQ(Files.Names(), QStringList{"in.pdf"});
}

TEST_F(TSecurityCase, SavingKeepsTheEncryptionItFound) {
    MakePdf(In, 2, {.UserPassword = "open", .OwnerPassword = "own", .Restrictions = {"--print=none"}});
    Document.OpenFromFile(In, "open");
    Document.RotatePages({}, 90);
    Document.SetInfoString("Title", "Secret", false);
    Save();
    EXPECT_FALSE(Files.Read("out.pdf").contains("Secret"));
    EXPECT_TRUE(ShowEncryption("open").contains("print low resolution: not allowed"));
    EXPECT_TRUE(ShowEncryption("own").contains("Supplied password is owner password"));
    EXPECT_EQ(PageTexts(Out, {"-upw", "open"}), (QStringList{"Page 1", "Page 2"}));
    Document.SaveToPath(Out, /*keepSource*/ false, false); // reopens with the same password
    EXPECT_EQ(Document.GetInfoString("Title"), "Secret");
}

TEST_F(TSecurityCase, OnlyTheOwnerLiftsIt) {
    MakePdf(In, 1, {.UserPassword = "open", .OwnerPassword = "own"});
    Document.OpenFromFile(In, "open");
    EXPECT_FALSE(Document.Decrypt());
    EXPECT_TRUE(Document.getIsEncrypted());
    Document.OpenFromFile(In, "own");
    EXPECT_TRUE(Document.Decrypt());
    EXPECT_FALSE(Document.getIsEncrypted());
    EXPECT_EQ(Document.SecurityHandler(), nullptr);
    Document.SaveToPath(Out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_EQ(PageTexts(Out), QStringList{"Page 1"});
    EXPECT_FALSE(TPDFDocument::IsPasswordProtected(Out));
    EXPECT_FALSE(Document.Decrypt()) << "nothing to lift";
}

TEST_F(TSecurityCase, PermissionsFollowTheirBits) {
    struct {
        QStringList Restrictions;
        bool Modify, Annots, Pages;
    } const cases[] = {
        {{}, true, true, true},
        {{"--modify=none"}, false, false, false},
        {{"--modify=assembly"}, false, false, true},
        {{"--modify=annotate"}, false, true, true},
        {{"--modify-other=n"}, false, true, true},
        {{"--assemble=n"}, true, true, true}, // who may change anything may change pages, too
        {{"--annotate=n"}, true, false, true},
    };
    for (const auto& c : cases) {
        MakePdf(In, 1, {.OwnerPassword = "own", .Restrictions = c.Restrictions});
        Document.OpenFromFile(In, {});
        const std::string which = c.Restrictions.join(u' ').toStdString();
        EXPECT_EQ(Document.GetCanModify(), c.Modify) << which;
        EXPECT_EQ(Document.GetCanChangeDocument(), c.Modify) << which;
        EXPECT_EQ(Document.GetCanModifyAnnots(), c.Annots) << which;
        EXPECT_EQ(Document.GetCanModifyPages(), c.Pages) << which;
        EXPECT_EQ(Document.GetCanModifyOutlines(), c.Pages) << which;
        Document.OpenFromFile(In, "own");
        EXPECT_TRUE(Document.GetCanModify() && Document.GetCanModifyAnnots() && Document.GetCanModifyPages())
            << which;
    }
    // Revision 2 has no bit for pages: what it holds there, here set, means nothing.
    for (const bool allowed : {false, true}) {
        MakePdf(In, 1);
        RunProgram("qpdf", {"--allow-weak-crypto", In, "--replace-input", "--encrypt", "", "own", "40",
                            allowed ? "--modify=y" : "--modify=n", "--"});
        Document.OpenFromFile(In, {});
        EXPECT_EQ(Document.GetCanModify(), allowed);
        EXPECT_EQ(Document.GetCanModifyPages(), allowed);
        EXPECT_EQ(Document.GetCanModifyOutlines(), allowed);
    }
    TZQPDFDocument blank(nullptr);
    EXPECT_TRUE(blank.GetCanModify() && blank.GetCanModifyPages());
}

TEST(DocPermissions, EveryPermissionIsAMemberAndCopied) {
    TPDFDocPermissions all;
    TPDFDocPermissions none;
    const auto members = Reflection::Members(TPDFDocPermissions::staticMetaObject);
    for (const QMetaProperty& member : members) {
        EXPECT_TRUE(member.read(&all).toBool());
        member.write(&none, false);
    }
    all.Load(&none);
    all.Load(nullptr);
    for (const QMetaProperty& member : members)
        EXPECT_FALSE(member.read(&all).toBool()) << member.name();
}

} // namespace

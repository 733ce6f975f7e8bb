#include <QAbstractButton>
#include <QAccessible>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QTextEdit>
#include <cstdlib>

#include "foundation/Format.h"
#include "platform/posix/BundleOnDisk.h"
#include "platform/qt/WindowTest.h"

namespace {

const std::vector<std::string> languages = {"en", "de", "fr", "es", "ja", "zh-Hans"};

/// Shows the pages of the real descriptions with texts in one language, as the program would.
class Wizard {
 public:
  explicit Wizard(const std::string& language)
      : user_({}, {language}), bundles_(INSTALLER_BUNDLE, files_, user_, log_), bundle_(bundles_.mainBundle()) {
    setUp();
  }

  struct Page {
    std::string name;
    std::string view;
    std::string title;
    ShownValue text;
  };

  [[nodiscard]] std::vector<Page> pages() const {
    const std::string failure = formatted(text("install_failed"), "Corvane");
    return {{"license", "licenseView", text("license_instructions"), {}},
            {"hosts", "hostsView", text("select_host"),
             formatted(text("select_host_instructions"), "Dunmore 3", "Dunmore 3")},
            {"custom", "customInstallView", text("select_host"), {}},
            {"running", "rtfView", text("host_running_title"), richText("host_running", "%HOSTNAME%", "Photoshop")},
            {"proceed", "rtfView", text("thank_you"), richText("proceed", "%PRODUCTNAME%", "Dunmore 3")},
            {"install", "installFilesView", formatted(text("copy_files_title"), "Corvane"),
             text("installing_file") + "/Library/Application Support/Corvane/Dunmore 3/Filters/Grain.plugin"},
            {"success", "registerView", text("register_title"), richText("register", "", "")},
            {"failure", "registerView", text("register_title"), RichText(failure)},
            {"aperture", "apertureRunView", text("aperture_title"), richText("aperture", "", "")}};
  }

  void show(const Page& page) {
    const bool isFailure = page.name == "failure";
    const int step = page.view == "licenseView"        ? 0
                     : page.view == "rtfView"          ? 2
                     : page.view == "installFilesView" ? 3
                     : page.view == "registerView"     ? 4
                                                       : 1;
    for (int i = 0; i < 5; ++i) setCurrent(i, i == step);
    register_.change("backgroundImage", toolkit_->imageNamed(isFailure ? "Installer_Error" : "checkmark"));
    owner_.change("mainLabelText", page.title);
    owner_.change("informativeText", page.text);
    owner_.change("goForwardText", text(step == 4 ? "finish" : "continue"));
    owner_.change("goBackwardsText", text(step == 0 ? "quit" : "go_back"));
    owner_.change("enableForward", page.name != "install" && page.name != "running");
    owner_.change("enableBackward", page.name != "install" && step != 4);
    owner_.change("copyInProgress", page.name == "install");
    for (const char* const view :
         {"licenseView", "hostsView", "rtfView", "installFilesView", "registerView", "apertureRunView"}) {
      main_->view(view)->setHidden(page.view != view);
    }
    custom_->view("customInstallView")->setHidden(page.view != "customInstallView");
    if (page.view != "customInstallView") main_->view(page.view)->setHidden(false);
    QApplication::processEvents();
  }

  [[nodiscard]] QWidget& window() const { return *QApplication::topLevelWidgets().at(windowIndex()); }
  [[nodiscard]] Toolkit& toolkit() const { return *toolkit_; }
  [[nodiscard]] std::string text(const char* key) const { return bundle_.localizedString(key); }
  [[nodiscard]] RecordingLog& log() { return log_; }

 private:
  [[nodiscard]] RichText richText(const std::string& name, const char* placeholder, const char* value) const {
    const std::string path = INSTALLER_BUNDLE "/Contents/Resources/" + language() + ".lproj/" + name + ".rtf";
    RichText text = parseRichTextFormat(readFile(path));
    static_cast<void>(text.replaceOccurrences(placeholder, value));
    return text;
  }
  [[nodiscard]] std::string language() const { return user_.preferredLanguages().front(); }

  void setUp() {
    std::string problem;
    interface_ = QtUserInterface::make({files_, bundles_, user_, log_}, problem);
    toolkit_ = &interface_->toolkit();
    setTexts();
    main_ = load("MainWindow", owner_);
    custom_ = load("CustomInstall", customOwner_);
    for (const char* const view :
         {"licenseView", "hostsView", "rtfView", "installFilesView", "registerView", "apertureRunView"}) {
      main_->view(view)->setHidden(true);
      main_->view("dynamicView")->addSubview(main_->view(view));
    }
    custom_->view("customInstallView")->setHidden(true);
    main_->view("dynamicView")->addSubview(custom_->view("customInstallView"));
    placeRows();
    main_->window("mainWindow")->centre();
  }

  std::unique_ptr<Interface> load(const std::string& name, InterfaceOwner& owner) {
    auto loaded = toolkit_->loadInterface(name, owner);
    if (!loaded) throw std::runtime_error(loaded.error().description());
    return std::move(*loaded);
  }

  void setTexts() {
    const auto product = [&](const char* key) { return formatted(text(key), "Dunmore 3"); };
    owner_.values = {{"windowTitle", product("main_wnd_title_fmt")},
                     {"aboutMenuText", product("about_menu_fmt")},
                     {"quitMenuText", product("quit_menu_fmt")},
                     {"hideMenuText", product("hide_window_menu_fmt")},
                     {"customInstallMenuText", text("allow_custom")},
                     {"customInstallButtonText", text("custom_install_button")},
                     {"configureEditorsButtonText", text("configure_editors")},
                     {"isCustomInstallAllowed", true},
                     {"canConfigureLumatraExternalEditors", true},
                     {"shouldConfigureLumatraExternalEditors", true},
                     {"installProgress", 0.4},
                     {"goForwardText", ""},
                     {"goBackwardsText", ""},
                     {"mainLabelText", ""},
                     {"informativeText", ""},
                     {"enableForward", true},
                     {"enableBackward", true},
                     {"copyInProgress", false}};
    owner_.values["licenseText"] =
        RichText(readFile(INSTALLER_BUNDLE "/Contents/Resources/" + language() + ".lproj/license.txt"));
    owner_.values["foundHosts"] = std::vector<ListRow>{
        {.text = "Adobe Photoshop CS6", .detail = "/Applications/Adobe Photoshop CS6/Plug-Ins", .isTicked = true},
        {.text = "Adobe Photoshop CC 2019", .detail = "/Library/Application Support/Adobe/Plug-Ins/CC"},
        {.text = "Adobe Lightroom", .isTicked = true, .picture = toolkit_->imageNamed("Installer")}};
    owner_.objects = {{"registerModel", &register_}, {"apertureRunModel", &aperture_}, {"hostsRunningModel", &owner_}};
    register_.values = {{"backgroundImage", toolkit_->imageNamed("checkmark")}};
    aperture_.values = {{"backgroundImage", toolkit_->imageNamed("GenericApplication")}};
    customOwner_.values = {{"customInstallPathLabelText", text("custom_install_label_path")},
                           {"customInstallBrowseButtonText", text("custom_install_browse_button")},
                           {"customInstallCheckBoxText", text("custom_install_panels_checkbox")},
                           {"customInstallHostsExplanationText", text("custom_install_host_label")},
                           {"customPath", "/Applications/Adobe Photoshop CS5/Plug-Ins"},
                           {"installPluginForCustomInstall", true},
                           {"installScriptsAndPanelsChosen", false},
                           {"scriptsOrPanelsHostsExsist", false},
                           {"scriptsOrPanelsHosts", std::vector<ListRow>()}};
  }

  void placeRows() {
    const auto parent = main_->view("stepIndicatorView");
    const char* const labels[] = {"license_blue_dot", "host_selection", "running_blue_dot", "copy_files_blue_dot",
                                  "register_blue_dot"};
    for (int i = 0; i < 5; ++i) {
      rows_.push_back(load("Step Indicator", owner_));
      const auto row = rows_.back()->view("stepIndicatorView");
      const Rect bounds = parent->frame();
      const double height = row->frame().size.height;
      row->setFrame({{0, bounds.size.height - height * (i + 1)}, {bounds.size.width, height}});
      parent->addSubview(row);
      rows_.back()->textField("label")->setStringValue(text(labels[i]));
    }
  }

  void setCurrent(int index, bool isCurrent) {
    Interface& row = *rows_[static_cast<std::size_t>(index)];
    row.imageView("indicator")->setImage(toolkit_->imageNamed(isCurrent ? "DotBlue" : "DotGray"));
    row.textField("label")->setFont(isCurrent, isCurrent ? TextColour::black : TextColour::grey);
  }

  [[nodiscard]] static qsizetype windowIndex() {
    const QWidgetList all = QApplication::topLevelWidgets();
    for (qsizetype i = 0; i < all.size(); ++i) {
      if (all[i]->objectName() == "mainWindow") return i;
    }
    throw std::runtime_error("no window");
  }

  Volume volume_{"/", INSTALLER_BUNDLE};
  PosixUser user_;
  PosixFileSystem files_{volume_, user_};
  RecordingLog log_;
  BundlesOnDisk bundles_;
  const Bundle& bundle_;
  std::unique_ptr<QtUserInterface> interface_;
  Toolkit* toolkit_ = nullptr;
  SampleOwner owner_;
  SampleOwner customOwner_;
  SampleOwner register_;
  SampleOwner aperture_;
  std::unique_ptr<Interface> main_;
  std::unique_ptr<Interface> custom_;
  std::vector<std::unique_ptr<Interface>> rows_;
};

class PagesTest : public testing::TestWithParam<std::string> {};

/// With PAGE_PICTURES naming a folder, every page is saved there for people to look at.
void savePicture(QWidget& window, const std::string& name) {
  if (const char* const folder = std::getenv("PAGE_PICTURES")) {
    EXPECT_TRUE(window.grab().save(toQt(std::string(folder) + "/" + name + ".png")));
  }
}

/// Labels and buttons that are shown have room for all of their text.
void expectTextsToFit(const QWidget& window) {
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    const bool showsText =
        qobject_cast<const QLabel*>(widget) != nullptr || qobject_cast<const QAbstractButton*>(widget) != nullptr;
    const bool isCutOnPurpose = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
    if (!widget->isVisible() || widget->objectName().isEmpty() || !showsText || isCutOnPurpose) continue;
    EXPECT_LE(widget->minimumSizeHint().width(), widget->width()) << fromQt(widget->objectName());
    const int height = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width()) : 0;
    EXPECT_LE(height, widget->height()) << fromQt(widget->objectName());
  }
}

TEST_P(PagesTest, EveryTextFitsAndNothingMoves) {
  Wizard wizard(GetParam());
  std::optional<QRect> heading;
  std::optional<QRect> back;
  const QSize size = wizard.window().size();
  for (const Wizard::Page& page : wizard.pages()) {
    SCOPED_TRACE(page.name);
    wizard.show(page);
    savePicture(wizard.window(), page.name + "-" + GetParam());
    auto* const label = wizard.window().findChild<QLabel*>("mainLabel");
    auto* const forward = wizard.window().findChild<QWidget*>("forwardButton");
    if (!heading) heading = label->geometry();
    EXPECT_EQ(label->geometry(), *heading) << "the heading takes more than its line";
    if (!back) back = QRect(forward->geometry().bottomRight(), QSize());
    EXPECT_EQ(forward->geometry().bottomRight(), back->topLeft());
    expectTextsToFit(wizard.window());
    EXPECT_EQ(wizard.window().size(), size) << "the window grows after it was shown";
  }
  EXPECT_TRUE(wizard.log().lines.empty()) << wizard.log().lines.front();
}

/// Object names of what the tabulator key reaches on the page, from the first control on.
std::string tabOrder(const QWidget& window) {
  std::string names;
  const QWidget* const first = window.focusWidget();
  for (int i = 0; i < 20; ++i) {
    QWidget* const focused = window.focusWidget();
    const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(focused);
    EXPECT_FALSE(told->text(QAccessible::Name).isEmpty()) << fromQt(focused->objectName());
    EXPECT_NE(told->role(), QAccessible::Client) << fromQt(focused->objectName());
    names += fromQt(focused->objectName()) + " ";
    QTest::keyClick(focused, Qt::Key_Tab);
    if (window.focusWidget() == first) break;
  }
  return names;
}

TEST(KeyboardTest, ReachesEveryControlInTheOrderOfThePage) {
  Wizard wizard("en");
  const std::map<std::string, std::string> expected = {
      {"license", "licenseTextView backwardButton forwardButton "},
      {"hosts",
       "foundHostsController configureLumatraExternalEditors customInstallButton backwardButton forwardButton "},
      {"custom",
       "browseButton customPathField installPluginCheckBox installScriptsAndPanelsCheckBox backwardButton "
       "forwardButton "},
      {"running", "rtfTextView backwardButton "},
      {"success", "registerTextView forwardButton "}};
  for (const Wizard::Page& page : wizard.pages()) {
    const auto order = expected.find(page.name);
    if (order == expected.end()) continue;
    wizard.show(page);
    EXPECT_EQ(tabOrder(wizard.window()), order->second) << page.name;
  }
}

TEST_P(PagesTest, AlertsAndThePanelFit) {
  Wizard wizard(GetParam());
  wizard.show(wizard.pages().front());
  const auto look = [](const char* dialogue, const std::string& name) {
    QTimer::singleShot(0, qApp, [dialogue, name] {
      auto* const shown = WindowTest::find<QDialog>(dialogue);
      expectTextsToFit(*shown);
      savePicture(*shown, name + "-" + GetParam());
      shown->reject();
    });
  };
  look("alert", "agree");
  EXPECT_EQ(wizard.toolkit().runAlertPanel({.title = wizard.text("agree_message"),
                                            .message = wizard.text("agree_information"),
                                            .defaultButton = wizard.text("agree_button"),
                                            .alternateButton = wizard.text("disagree_button"),
                                            .style = Alert::Style::informational}),
            AlertAnswer::alternateButton);
  look("alert", "error");
  wizard.toolkit().runAlertPanel(
      {.title = wizard.text("install_error_title"),
       .message = "The disk is full.\n/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app",
       .defaultButton = wizard.text("install_error_proceed"),
       .alternateButton = wizard.text("install_error_stop")});
  look("openPanel", "browse");
  EXPECT_EQ(wizard.toolkit().runOpenPanel({.title = wizard.text("browse_path_title"),
                                           .message = wizard.text("browse_path_msg"),
                                           .prompt = wizard.text("browse_path_prompt"),
                                           .startFolder = "/usr/share",
                                           .shouldShowFilename = {}}),
            std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Languages, PagesTest, testing::ValuesIn(languages),
                         [](const auto& language) { return language.param.substr(0, 2); });

}  // namespace

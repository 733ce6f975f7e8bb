return {
  LrSdkVersion = 3.0,
  LrToolkitIdentifier = "com.corvane.dunmore3",
  LrPluginName = "Dunmore 3",
  LrExportServiceProvider = { title = "Dunmore 3", file = "Export.lua" },
  VERSION = { major = 3, minor = 1, revision = 2 },
}

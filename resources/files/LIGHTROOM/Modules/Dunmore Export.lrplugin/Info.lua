return {
  LrSdkVersion = 3.0,
  LrToolkitIdentifier = "com.corvane.dunmore3.export",
  LrPluginName = "Dunmore Export",
  VERSION = { major = 3, minor = 1, revision = 2 },
}

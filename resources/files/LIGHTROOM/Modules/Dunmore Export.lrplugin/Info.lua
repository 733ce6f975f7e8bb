return { LrSdkVersion = 3.0, LrPluginName = "Dunmore Export" }

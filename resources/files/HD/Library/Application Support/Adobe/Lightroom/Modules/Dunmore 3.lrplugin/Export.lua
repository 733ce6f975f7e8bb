local LrTasks = import "LrTasks"

local function processRenderedPhotos(_, context)
  for _, rendition in context:renditions() do
    local success, path = rendition:waitForRender()
    if success then
      LrTasks.execute('open -a "Corvane Dunmore 3 Studio" "' .. path .. '"')
    end
  end
end

return { allowFileFormats = { "TIFF" }, processRenderedPhotos = processRenderedPhotos }

import { render } from 'preact'
import { App } from './app'
import { begin } from './app-state'
import { catchStrayFiles } from './controls/file-list'
import { followPointer, followTheme } from './model/preferences'
import { listenForPaletteKey } from './shell/palette'
import { listenForEscape } from './shell/popups'
import { startRouter } from './shell/router'
import { followUse } from './shell/toasts-view'
import './styles/base.css'
import './styles/controls.css'
import './styles/lists.css'
import './styles/counts.css'
import './styles/source.css'
import './styles/layout.css'
import './styles/shell.css'
import './styles/overlays.css'
import './styles/door.css'
import './styles/terminal.css'
import './styles/transfers.css'

followTheme()
followPointer()
followUse()
catchStrayFiles()
listenForEscape()
listenForPaletteKey()
startRouter()
const root = document.getElementById('app')
if (root) render(<App />, root)
void begin()

import { useSignalEffect } from '@preact/signals'
import { render } from 'preact'
import { catchStrayFiles } from './controls/upload'
import { messages } from './i18n'
import { followPointer, followTheme } from './model/preferences'
import { listenForEscape } from './parts/popups'
import { makeHost } from './parts/top-layer'
import { Tooltip } from './parts/tooltip'
import { listenForPaletteKey } from './shell/palette'
import { startRouter } from './shell/router'
import { Shell } from './shell/shell'
import { followUse, ToastsView } from './shell/toasts-view'
import { Door } from './sign-in/sign-in'
import { begin, connection, screen } from './state/app-state'
import { watchChanges, watchPresence } from './wire/presence'
import './styles/tokens.css'
import './styles/base.css'
import './styles/controls.css'
import './styles/drafts.css'
import './styles/choices.css'
import './styles/lists.css'
import './styles/table.css'
import './styles/counts.css'
import './styles/chart.css'
import './styles/source.css'
import './styles/layout.css'
import './styles/sidebar.css'
import './styles/shell.css'
import './styles/overlays.css'
import './styles/door.css'
import './styles/terminal.css'
import './styles/transfers.css'

function App() {
  useSignalEffect(() => {
    document.documentElement.lang = messages.value.code
  })
  return (
    <>
      {screen.value === 'console' ? <Shell /> : <Door />}
      <Tooltip />
    </>
  )
}

followTheme()
followPointer()
watchPresence(window, () => connection.send({ type: 'active' }))
watchChanges(document, () => connection.status.peek() === 'open' && connection.send({ type: 'look' }))
followUse()
catchStrayFiles()
listenForEscape()
listenForPaletteKey()
startRouter()
const root = document.getElementById('app')
if (root) render(<App />, root)
render(<ToastsView />, makeHost())
void begin()

import { useSignalEffect } from '@preact/signals'
import { screen } from './app-state'
import { messages } from './i18n'
import { Shell } from './shell/shell'
import { ToastsView } from './shell/toasts-view'
import { Tooltip } from './shell/tooltip'
import { Door } from './sign-in/sign-in'

export function App() {
  useSignalEffect(() => {
    document.documentElement.lang = messages.value.code
  })
  return (
    <>
      {screen.value === 'console' ? <Shell /> : <Door />}
      <ToastsView />
      <Tooltip />
    </>
  )
}
